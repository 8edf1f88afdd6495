// quorvex schema: the documents as an XML Schema, made from the layout tables.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <map>
#include <optional>

#include "document_tree.h"
#include "generate.h"
#include "xml/document.h"

namespace quorvex::tool {
namespace {

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    escaped += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '"' ? "&quot;" : std::string(1, c);
  }
  return escaped;
}

// "six-value statistic" is SixValueStatistic.
std::string TypeName(const std::vector<std::string>& structures) {
  std::string name;
  for (const std::string& structure : structures) {
    if (!name.empty()) name += "-or-";
    bool upper = true;
    for (const char c : structure) {
      const bool letter = std::isalnum(static_cast<unsigned char>(c)) != 0;
      if (letter) name += upper ? static_cast<char>(std::toupper(c)) : c;
      upper = !letter;
    }
  }
  return name;
}

class Schema {
 public:
  std::string Of(const std::vector<Node>& document, const std::string& what) {
    Node root;
    root.name = kRootElement;
    root.children = document;
    root.meaning = what;
    Element(root, 1);
    std::string types;
    for (const auto& [form, type] : simple_) types += TextOf(type);
    for (const auto& [name, text] : named_) types += text;
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\">\n" +
           text_ + types + "</xs:schema>\n";
  }

 private:
  void Line(int depth, const std::string& line) {
    text_ += std::string(2 * static_cast<size_t>(depth), ' ') + line + "\n";
  }

  // The type of a text. What is built in has a name only.
  struct SimpleType {
    std::string name, base = {}, facets = {}, meaning = {};
  };
  static SimpleType SimpleTypeOf(const ValueForm& form) {
    const auto pattern = [](const std::string& text) {
      return "<xs:pattern value=\"" + Escaped(text) + "\"/>";
    };
    const std::string most = std::to_string(form.most);
    const std::string size = form.size == 0 ? "" : std::to_string(form.size);
    const std::string width = form.size == 0 ? "" : "<xs:maxLength value=\"" + size + "\"/>";
    switch (form.kind) {
      case Kind::kU8:
        return {"xs:unsignedByte"};
      case Kind::kU16:
        return {"xs:unsignedShort"};
      case Kind::kI64:
        return {"xs:long"};
      case Kind::kI32:
        if (form.own_line) {
          return {"flagWord", "xs:token", pattern("-?[0-9]{1,10}"), "integer on a line of its own"};
        }
        if (form.most == INT32_MAX) return {"xs:int"};
        return {"intTo" + most, "xs:int", "<xs:maxInclusive value=\"" + most + "\"/>",
                "integer that shows " + most + " at the most"};
      case Kind::kF32:
        return {"float", "xs:token", pattern("-|-?[0-9]\\.[0-9]{6}E[+\\-][0-9]{2}|-?INF|-?NAN"),
                "single precision, seven significant digits; - where there is no value"};
      case Kind::kF64:
        return {"double", "xs:token", pattern("-|-?[0-9]\\.[0-9]{6}E[+\\-][0-9]{2,3}|-?INF|-?NAN"),
                "double precision, seven significant digits; - where there is no value"};
      case Kind::kSeconds:
        return {"seconds", "xs:token", pattern("-|-?[0-9]+\\.-?[0-9]{1,6}"),
                "seconds to the microsecond; - where there is no value"};
      case Kind::kNoValue:
        return {"noValue", "xs:token", pattern("-"), "no value is kept"};
      case Kind::kSpectrum:
        return {"base64of" + size, "xs:base64Binary", "<xs:length value=\"" + size + "\"/>",
                size +
                    " bytes: little-endian single precision floats, +infinity where there is no "
                    "value"};
      case Kind::kRawText:
        return {"anyText" + size, "xs:string", width, "text as it is stored"};
      case Kind::kText:
        return {"text" + size, "xs:string", pattern("[A-Za-z0-9 .,!%&=+\\-*/_\\\\?]*") + width,
                "text, unusual characters replaced by ?, line ends by a backslash"};
      case Kind::kGap:
      case Kind::kGroup:
      case Kind::kScaledI16:
      case Kind::kScaledF32:
      case Kind::kMade:
        break;  // no text, or one that reads as another kind
    }
    return {};
  }

  std::string text_;
  std::map<ValueForm, SimpleType> simple_;
  std::map<std::string, std::string> named_;

  // The name of a form's type, which is remembered for the end of the schema.
  std::string FormName(const ValueForm& form) {
    return simple_.emplace(form, SimpleTypeOf(form)).first->second.name;
  }

  static std::string TextOf(const SimpleType& type) {
    if (type.base.empty()) return "";
    return "  <xs:simpleType name=\"" + type.name + "\">\n    <xs:annotation><xs:documentation>" +
           type.meaning + "</xs:documentation></xs:annotation>\n    <xs:restriction base=\"" +
           type.base + "\">" + type.facets + "</xs:restriction>\n  </xs:simpleType>\n";
  }

  void Annotation(const Node& node, int depth) {
    if (node.meaning.empty()) return;
    const std::string unit = node.unit.empty() ? "" : ", in " + node.unit;
    Line(depth, "<xs:annotation><xs:documentation>" + Escaped(node.meaning + unit) +
                    "</xs:documentation></xs:annotation>");
  }

  static std::string Occurs(const Node& node) {
    std::string text;
    if (node.least != 1) text += " minOccurs=\"" + std::to_string(node.least) + "\"";
    if (node.most == kUnbounded) {
      text += " maxOccurs=\"unbounded\"";
    } else if (node.most != 1) {
      text += " maxOccurs=\"" + std::to_string(node.most) + "\"";
    }
    return text;
  }

  void Sequence(const Node& node, int depth) {
    Line(depth, "<xs:sequence" + (node.name.empty() ? Occurs(node) : "") + ">");
    for (const Node& child : node.children) {
      if (child.name.empty()) {
        Sequence(child, depth + 1);
      } else {
        Element(child, depth + 1);
      }
    }
    Line(depth, "</xs:sequence>");
  }

  // The name of an element's type, none where it is of no use elsewhere.
  std::optional<std::string> TypeOf(const Node& node) {
    if (!node.structures.empty()) {
      std::string name = TypeName(node.structures);
      if (named_.emplace(name, "").second) {
        std::string outside;
        std::swap(outside, text_);
        Line(1, "<xs:complexType name=\"" + name + "\">");
        Sequence(node, 2);
        Line(1, "</xs:complexType>");
        std::swap(outside, text_);
        named_[name] = outside;
      }
      return name;
    }
    std::set<ValueForm> values = node.values;
    // A float without a value reads like what never has one.
    if (values.count({Kind::kF32}) != 0) values.erase({Kind::kNoValue});
    if (values.empty()) return {};
    std::string name, members;
    for (const ValueForm& form : values) {
      name += (name.empty() ? "" : "-or-") + FormName(form);
      members += (members.empty() ? "" : " ") + FormName(form);
    }
    if (values.size() > 1) {
      named_[name] = "  <xs:simpleType name=\"" + name + "\"><xs:union memberTypes=\"" + members +
                     "\"/></xs:simpleType>\n";
    }
    return name;
  }

  void Phases(const Node& node, int depth) {
    Line(depth, "<xs:attribute name=\"phase\" use=\"required\">");
    Line(depth + 1, "<xs:simpleType>");
    Line(depth + 2, "<xs:restriction base=\"xs:token\">");
    for (const std::string& phase : node.phases) {
      Line(depth + 3, "<xs:enumeration value=\"" + phase + "\"/>");
    }
    Line(depth + 2, "</xs:restriction>");
    Line(depth + 1, "</xs:simpleType>");
    Line(depth, "</xs:attribute>");
  }

  // No phase stands twice among elements of one name.
  void OncePerPhase(const Node& node, int depth) {
    for (const Node& child : node.children) {
      if (child.phases.empty() || child.most == 1) continue;
      Line(depth, "<xs:unique name=\"" + node.name + "-" + child.name + "\"><xs:selector xpath=\"" +
                      child.name + "\"/><xs:field xpath=\"@phase\"/></xs:unique>");
    }
  }

  // Content with an attribute extends a type, or is a type of its own.
  void WithPhases(const Node& node, int depth) {
    Line(depth, "<xs:complexType>");
    const std::optional<std::string> type = TypeOf(node);
    if (type) {
      const std::string content = node.values.empty() ? "complexContent>" : "simpleContent>";
      Line(depth + 1, "<xs:" + content);
      Line(depth + 2, "<xs:extension base=\"" + *type + "\">");
      Phases(node, depth + 3);
      Line(depth + 2, "</xs:extension>");
      Line(depth + 1, "</xs:" + content);
    } else {
      Sequence(node, depth + 1);
      Phases(node, depth + 1);
    }
    Line(depth, "</xs:complexType>");
  }

  void Element(const Node& node, int depth) {
    std::string open = "<xs:element name=\"" + node.name + "\"" + (depth == 1 ? "" : Occurs(node));
    const std::optional<std::string> type = node.phases.empty() ? TypeOf(node) : std::nullopt;
    if (type) open += " type=\"" + *type + "\"";
    if (!node.fixed.empty()) open += " fixed=\"" + node.fixed + "\"";
    if (type && node.meaning.empty()) return Line(depth, open + "/>");
    Line(depth, open + ">");
    Annotation(node, depth + 1);
    if (!node.phases.empty()) {
      WithPhases(node, depth + 1);
    } else if (!type) {
      Line(depth + 1, "<xs:complexType>");
      Sequence(node, depth + 2);
      Line(depth + 1, "</xs:complexType>");
      OncePerPhase(node, depth + 1);
    }
    Line(depth, "</xs:element>");
  }
};

}  // namespace

std::string SchemaOf(const RecordType& type) {
  return Schema().Of(DocumentOf(type), "document of a recording of type " +
                                           std::to_string(type.type) + ", " + type.name);
}

std::string SchemaOfAnyType() {
  return Schema().Of(DocumentOfAnyType(), "document of a recording of any type");
}

}  // namespace quorvex::tool
