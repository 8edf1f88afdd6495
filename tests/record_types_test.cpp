// Sessions and rapid voltage changes: whole documents, written down from the record formats.
#include <gtest/gtest.h>

#include "support.h"

namespace quorvex::test {
namespace {

constexpr char kDeclaration[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
    "<Project xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
    "xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\">\n";

TEST(Sessions, WholeDocument) {
  Bytes file;
  file.Put<uint32_t>(0, 7).Put<uint32_t>(4, 15);
  file.PutTime(8, 2024, 3, 7, 14, 5, 9.25).PutTime(24, 2024, 3, 7, 14, 6, 12.0);
  file.Put<int32_t>(40, -4).Put<int32_t>(44, 1);
  file.Put<int32_t>(48, 1).Put<int32_t>(52, 2).Put<int32_t>(56, 3).Put<int32_t>(60, -1);
  // A session whose two elements are announced as three.
  file.PutTime(64, 2024, 3, 8, 0, 0, 1.001).PutTime(80, 2024, 3, 8, 23, 59, -1e37f);
  file.Put<int32_t>(96, 5).Put<int32_t>(100, 3);
  file.Put<int32_t>(104, 11).PadTo(120).Put<int32_t>(120, 12).PadTo(136);
  EXPECT_EQ(Lines(std::string(kDeclaration) +
                  "<FILE_HEADER>\n<FILE_VERSION>7</FILE_VERSION>\n<FILE_TYPE>15</FILE_TYPE>\n"
                  "</FILE_HEADER>\n"
                  "<SESSION>\n<SESSION_HEADER>\n"
                  "<startTime>\n<year>2024</year>\n<month>3</month>\n<day>7</day>\n"
                  "<hour>14</hour>\n<min>5</min>\n<sec>9.25</sec>\n</startTime>\n"
                  "<endTime>\n<year>2024</year>\n<month>3</month>\n<day>7</day>\n"
                  "<hour>14</hour>\n<min>6</min>\n<sec>12.0</sec>\n</endTime>\n"
                  "<sessionId>-4</sessionId>\n<elementsNum>1</elementsNum>\n</SESSION_HEADER>\n"
                  "<ELEMENT>\n<elementType>1</elementType>\n<fromScreen>2</fromScreen>\n"
                  "<toScreen>3</toScreen>\n<num>-1</num>\n</ELEMENT>\n"
                  "</SESSION>\n"
                  "<SESSION>\n<SESSION_HEADER>\n"
                  "<startTime>\n<year>2024</year>\n<month>3</month>\n<day>8</day>\n"
                  "<hour>0</hour>\n<min>0</min>\n<sec>1.000999</sec>\n</startTime>\n"
                  "<endTime>\n<year>2024</year>\n<month>3</month>\n<day>8</day>\n"
                  "<hour>23</hour>\n<min>59</min>\n<sec>-</sec>\n</endTime>\n"
                  "<sessionId>5</sessionId>\n<elementsNum>3</elementsNum>\n</SESSION_HEADER>\n"
                  "<ELEMENT>\n<elementType>11</elementType>\n<fromScreen>0</fromScreen>\n"
                  "<toScreen>0</toScreen>\n<num>0</num>\n</ELEMENT>\n"
                  "<ELEMENT>\n<elementType>12</elementType>\n<fromScreen>0</fromScreen>\n"
                  "<toScreen>0</toScreen>\n<num>0</num>\n</ELEMENT>\n"
                  "</SESSION>\n</Project>\n"),
            Converted(file));
  ExpectTruncationIsHarmless(file);
}

TEST(Sessions, CountsThatAnnounceNothing) {
  for (const int32_t elements : {0, -1, INT32_MIN}) {
    Bytes file;
    file.Put<uint32_t>(4, 15).PadTo(8 + 2 * 40);
    file.Put<int32_t>(8 + 36, elements);
    const std::string body = BodyOf(Converted(file));
    EXPECT_EQ(std::string::npos, body.find("<ELEMENT>")) << elements;
    EXPECT_NE(body.find("<SESSION>"), body.rfind("<SESSION>")) << "both headers are sessions";
  }
}

// One change with values that can be told apart, and the element texts that it must give.
Bytes ChangeRecord(float first_voltage) {
  Bytes record;
  record.Put<int32_t>(0, 2).Put(4, 231.5f).Put(8, kNone).Put(12, 99.0f);
  record.Put(16, 4.25f).Put(20, -0.5f);
  record.PutTime(24, 2024, 3, 7, 14, 5, 3.5).PutTime(40, 2024, 3, 7, 14, 5, 4.5);
  for (size_t i = 0; i < 200; ++i) {
    record.Put(56 + 4 * i, first_voltage + static_cast<float>(i));
    record.PutTime(856 + 16 * i, 2024, 1, 1, 0, 0, 0.25 * static_cast<double>(i));
  }
  return record.Put(4076, 1.0f).PadTo(4088);
}

std::string HalfCycle(const std::string& volts, const std::string& seconds) {
  return "<RMS12>\n<U>" + volts +
         "</U>\n<TIME_STAMP>\n<year>2024</year>\n<month>1</month>\n"
         "<day>1</day>\n<hour>0</hour>\n<min>0</min>\n<sec>" +
         seconds + "</sec>\n</TIME_STAMP>\n</RMS12>\n";
}

TEST(RapidVoltageChanges, RecordInWrittenOrder) {
  Bytes file = HeadOf(10);
  file.PutBytes(3072, ChangeRecord(100.0f));
  const std::string body = BodyOf(Converted(file));
  const std::string time =
      "<year>2024</year>\n<month>3</month>\n<day>7</day>\n<hour>14</hour>\n<min>5</min>\n";
  const std::string start = Lines(
      "<RECORDS>\n<RVC_RECORD>\n<PHASE>2</PHASE>\n<SS1>2.315000E+02</SS1>\n<SS2>-</SS2>\n"
      "<DU_MAX>4.250000E+00</DU_MAX>\n<DU_SS>-5.000000E-01</DU_SS>\n"
      "<RVC_START_TIME>\n" +
      time +
      "<sec>3.5</sec>\n</RVC_START_TIME>\n"
      "<RVC_STOP_TIME>\n" +
      time +
      "<sec>4.5</sec>\n</RVC_STOP_TIME>\n"
      "<DURATION>1.000000E+00</DURATION>\n<RMS12_VALUES>\n" +
      HalfCycle("1.000000E+02", "0.0") + HalfCycle("1.010000E+02", "0.25"));
  EXPECT_EQ(start, body.substr(0, start.size()));
  const std::string end =
      Lines(HalfCycle("2.990000E+02", "49.75") + "</RMS12_VALUES>\n</RVC_RECORD>\n</RECORDS>\n");
  EXPECT_EQ(end, body.substr(body.size() - end.size()));
  ExpectTruncationIsHarmless(file);
}

TEST(RapidVoltageChanges, PartialLastRecordKeepsThePreviousBytes) {
  Bytes file = HeadOf(10);
  file.PutBytes(3072, ChangeRecord(100.0f)).PutBytes(3072 + 4088, ChangeRecord(500.0f));
  file.Put<int32_t>(3072 + 2 * 4088, 3);  // four bytes of a third: its phase
  const std::string body = BodyOf(Converted(file));
  EXPECT_GT(body.size(), 65536u) << "more than the writer's buffer";
  const size_t third = body.rfind("<RVC_RECORD>");
  const size_t second = body.rfind("<RVC_RECORD>", third - 1);
  std::string repeated = body.substr(second, third - second);
  repeated.replace(repeated.find("<PHASE>2"), 8, "<PHASE>3");
  EXPECT_EQ(repeated + "</RECORDS>\r\n", body.substr(third));
}

TEST(RapidVoltageChanges, FilesWithoutRecords) {
  for (const size_t size : {8u, 100u, 3071u, 3072u}) {
    Bytes file = HeadOf(10);
    file.resize(size);
    EXPECT_EQ("<RECORDS>\r\n</RECORDS>\r\n", BodyOf(Converted(file))) << size;
  }
}

TEST(Dispatch, FilesThatAreNoRecordings) {
  const auto document = [](std::initializer_list<uint8_t> bytes) {
    return Converted(Bytes(bytes));
  };
  EXPECT_EQ("", document({}));
  EXPECT_EQ("", document({1, 0, 0, 0}));
  EXPECT_EQ("", document({1, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ("", document({1, 0, 0, 0, 19, 0, 0, 0}));
  EXPECT_EQ("", document({1, 0, 0, 0, 15, 1, 0, 0}));
  EXPECT_NE("", document({1, 0, 0, 0, 15})) << "the missing bytes of the type are zero";
}

}  // namespace
}  // namespace quorvex::test
