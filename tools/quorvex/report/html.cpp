#include "report/html.h"

#include <cmath>
#include <cstdio>

#include "shared/messages.h"

namespace quorvex::tool {

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : Shown(text)) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

HtmlTable::HtmlTable(const std::string& css_class, const std::vector<std::string>& titles)
    : css_class_(css_class), titles_(titles), classes_(titles.size()) {
  for (size_t i = 0; i < titles.size(); ++i) {
    if (titles[i][0] != '#') continue;
    titles_[i].erase(0, 1);
    classes_[i] = "n";
  }
}

void HtmlTable::Row(const std::vector<std::string>& cells, const std::string& attributes) {
  rows_ += "<tr" + attributes + ">";
  for (size_t i = 0; i < cells.size(); ++i) {
    rows_ += classes_[i].empty() ? "<td>" : "<td class=\"" + classes_[i] + "\">";
    rows_ += Escaped(cells[i]) + "</td>";
  }
  rows_ += "</tr>\n";
}

std::string HtmlTable::Html() const {
  std::string html = "<div class=\"wide\"><table";
  if (!css_class_.empty()) html += " class=\"" + css_class_ + "\"";
  html += "><thead><tr>";
  for (size_t i = 0; i < titles_.size(); ++i) {
    html += std::string("<th scope=\"col\"") + (classes_[i] == "n" ? " class=\"n\">" : ">") +
            Escaped(titles_[i]) + "</th>";
  }
  return html + "</tr></thead><tbody>\n" + rows_ + "</tbody></table></div>\n";
}

std::string Paragraph(const std::string& text, const std::string& css_class) {
  return (css_class.empty() ? "<p>" : "<p class=\"" + css_class + "\">") + Escaped(text) + "</p>\n";
}

std::string Heading(int level, const std::string& text) {
  const std::string tag = "h" + std::to_string(level);
  return "<" + tag + ">" + Escaped(text) + "</" + tag + ">\n";
}

std::string Details(const std::string& summary, const std::string& html, bool open) {
  return std::string(open ? "<details open>" : "<details>") + "<summary>" + Escaped(summary) +
         "</summary>\n" + html + "</details>\n";
}

std::string SharePercent(double share) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f %%", std::floor(share * 10000 + 1e-7) / 100);
  return text;
}

std::string NumberText(double value, int digits) {
  if (!std::isfinite(value)) return "";
  char text[40];
  std::snprintf(text, sizeof text, "%.*g", digits, value);
  return text;
}

std::string CountText(uint64_t count) {
  std::string text = std::to_string(count);
  for (size_t at = text.size(); at > 3;) {
    at -= 3;
    text.insert(at, ",");
  }
  return text;
}

}  // namespace quorvex::tool
