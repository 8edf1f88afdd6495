// Sketches of records and their documents: one notation, written down from the format, puts a value
// into the record and its element into the expected text. Every value is its own offset, so that
// what is read from a wrong place shows.
#pragma once

#include <cstdio>
#include <sstream>
#include <string>

#include "support.h"

namespace quorvex::test {

struct Sketch {
  Bytes record;
  std::string text;  // with LF

  // Elements in written order, offsets from `base`: "name:16" a float, "name!16" a float without
  // value, "name%16" a double, "name?16" a double without value, "name#16" an integer, "name~16" a
  // value with a type, "name^16" a phasor, "name@16" a time.
  Sketch& Add(size_t base, const std::string& notation) {
    std::istringstream words(notation);
    for (std::string word; words >> word;) {
      const size_t mark = word.find_first_of(":!%?#~^@");
      AddWord(word.substr(0, mark), word[mark], base + std::stoul(word.substr(mark + 1)));
    }
    return *this;
  }
  Sketch& AddGroup(const std::string& name, size_t base, const std::string& notation) {
    return Open(name).Add(base, notation).Close(name);
  }
  Sketch& AddFloats(const std::string& name, size_t base, int count) {
    Open(name);
    for (int i = 0; i < count; ++i) Add(base, "v:" + std::to_string(4 * i));
    return Close(name);
  }
  Sketch& Open(const std::string& name) { return Line("<" + name + ">"); }
  Sketch& Close(const std::string& name) { return Line("</" + name + ">"); }
  Sketch& Value(const std::string& name, const std::string& value) {
    return Line("<" + name + ">" + value + "</" + name + ">");
  }

 private:
  Sketch& Line(const std::string& line) {
    text += line + "\n";
    return *this;
  }
  template <typename T>
  Sketch& Leaf(const std::string& name, size_t at, T value, const std::string& shown) {
    record.Put(at, value);
    return Value(name, shown);
  }

  Sketch& AddWord(const std::string& name, char mark, size_t at) {
    char number[32];
    std::snprintf(number, sizeof number, "%E", static_cast<double>(at));
    if (mark == ':') return Leaf(name, at, static_cast<float>(at), number);
    if (mark == '!') return Leaf(name, at, kNone, "-");
    if (mark == '%') return Leaf(name, at, static_cast<double>(at), number);
    if (mark == '?') return Leaf(name, at, static_cast<double>(kNone), "-");
    if (mark == '#') return Leaf(name, at, static_cast<int32_t>(at), std::to_string(at));
    if (mark == '~') return AddGroup(name, at, "value:0 type#4");
    if (mark == '^') return AddGroup(name, at, "A:0 phase:4");
    record.PutTime(at, 2024, 3, 7, 14, 5, static_cast<double>(at));
    Open(name).Value("year", "2024").Value("month", "3").Value("day", "7").Value("hour", "14");
    return Value("min", "5").Value("sec", std::to_string(at) + ".0").Close(name);
  }
};

constexpr char kTotalPower[] =
    "P:0 Se:12 Sv:8 Sa:20 Q:4 Qa:16 PFe~24 PFv~32 PFa~40 PpFund:48 SpFund:60 SeFund:56 SfundU:64 "
    "QpFund:52 LUfund:100 Pfund:112 QvFund:104 SvFund:68 PFvFund~84 QaFund:108 SaFund:72 "
    "PFaFund~92 tgF~144 PFpFund~76 Ph:116 SeN:132 DeI:120 DeV:124 DeH:128 SeH:136 HP:140 Ep_p%152 "
    "Ep_m?160 Eq_p%168 Eq_m%176 Es_p%184 Es_m%192";
constexpr char kPhasePower[] =
    "P:0 S:4 Q:8 PF~12 Pfund:20 Sfund:28 Qfund:24 DPF~32 Ph:40 Sh:44 Sn:48 Di:52 Dv:56 Dh:60 HP:64 "
    "tgF~68 Ep_p%80 Ep_m%88 Eq_p%96 Eq_m%104 Es_p%112 Es_m?120";
constexpr char kSymmetry[] =
    "Uo^0 Io^8 Up^16 Ip^24 Um^32 Im^40 SYM_Um:48 SYM_Uo:52 SYM_Im:56 SYM_Io!60";
constexpr char kChannelValues[] =
    "UL:4 THD_U:8 THD_U_PR:12 CF_U:16 PEAK_U:20 MAX12_U:24 MIN12_U:28 PHASE_U:32 IL:36 THD_I:40 "
    "THD_I_PR:44 CF_I:48 PEAK_I:52 MAX12_I:56 MIN12_I:60 PHASE_I!64";

inline void AddTotals(Sketch* sketch, size_t base) {
  sketch->AddGroup("POWER_ENERGY_TOTAL", base, kTotalPower);
  sketch->AddGroup("POWER_ENERGY_TOTAL_CURRENT", base + 208, kTotalPower);
  sketch->AddGroup("POWER_ENERGY_TOTAL_LAST", base + 416, kTotalPower);
}

// Two samples a scope, 100 and -8; `u` and `i` are the texts that they must have.
struct Scopes {
  std::string u[2], i[2];
};

// A channel's block at `base`; `k` is what stands between the angles and the frequencies.
inline void AddChannel(Sketch* sketch, const std::string& label, size_t base, const Scopes& scopes,
                       const std::string& k = "", bool flicker = true) {
  sketch->Open(label).Add(base, kChannelValues).Add(base, k);
  sketch->Add(base, "f_sampl:68 f_200ms:72 f_10s:76");
  for (const size_t at : {base + 80, base + 4176}) {
    sketch->record.Put<int16_t>(at, 100).Put<int16_t>(at + 2, -8);
  }
  sketch->Open("SCOPE_U").Value("v", scopes.u[0]).Value("v", scopes.u[1]).Close("SCOPE_U");
  sketch->Open("SCOPE_I").Value("v", scopes.i[0]).Value("v", scopes.i[1]).Close("SCOPE_I");
  sketch->AddGroup("POWER_ENERGY", base + 8272, kPhasePower);
  sketch->AddGroup("POWER_ENERGY_CURRENT", base + 8416, kPhasePower);
  sketch->AddGroup("POWER_ENERGY_LAST", base + 8560, kPhasePower);
  sketch->AddFloats("HARM_U", base + 8704, 51).AddFloats("HARM_I", base + 8908, 51);
  sketch->AddFloats("INTER_HARM_U", base + 9112, 51).AddFloats("INTER_HARM_I", base + 9316, 51);
  if (flicker) {
    sketch->AddGroup("FLICKER", base, "P_INST:9520 P_ST:9524 P_LT:9528 P_ST_1MIN:9532");
  }
  sketch->Close(label);
}

// Settings at their offsets in a file, such that one step of a sample is worth 1.25, 2.5, 5 and
// 0.625 V on the phases and the neutral, and 1.25, 2.5, 5 and 10 A; the neutral's own current is
// worth 20 A where its own range is asked and not the phases'.
inline Bytes ScaledHead(uint32_t type, uint8_t connection) {
  Bytes head = HeadOf(type);
  head.Put<int32_t>(16, 1).Put<int32_t>(2576, 1).Put<uint8_t>(21, connection);
  head.Put(2216, 8192.0f).Put(2228, 16384.0f).Put(2240, 32768.0f).Put(2264, 4096.0f);
  for (const size_t at : {136, 280, 424, 568}) head.Put(at, 1.0f);
  head.Put<uint8_t>(812, 100).Put<uint8_t>(816, 10);
  head.Put(2292, 16384.0f).Put(2300, 32768.0f).Put(2308, 65536.0f).Put(2316, 131072.0f);
  return head.Put(2312, 262144.0f);
}

}  // namespace quorvex::test
