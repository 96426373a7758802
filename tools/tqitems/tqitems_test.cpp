// The tool tqitems: its parts, and as its users run it.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "Files.h"
#include "Items.h"
#include "Json.h"
#include "Program.h"
#include "Reports.h"
#include "Scale.h"
#include "TqFloat.h"
#include "TqWrite.h"

namespace {

TypeList Types(const std::vector<std::string>& names) {
    TypeList types;
    for (const std::string& name : names) types.push_back(FindType(name));
    return types;
}

std::string AllBytes() {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    return bytes;
}

const std::string row = "00004eth0000021700004True";

// Shows the buffer as JSON and encodes that again.
std::string ThereAndBack(const std::string& bytes, const TypeList& types = TypeList()) {
    return EncodeJson(ToJson(Decode(bytes, types)));
}

std::string ProblemOf(const std::string& bytes, const TypeList& types = TypeList()) {
    const Decoded decoded = Decode(bytes, types);
    if (decoded.problem.empty()) return "";
    return std::to_string(decoded.offset) + ": " + decoded.problem;
}

std::string ProblemOfLines(const std::string& text, const TypeList& types = TypeList()) {
    try {
        return "none: " + EncodeLines(text, types);
    } catch (const NotEncoded& problem) {
        return problem.what();
    }
}

std::string ProblemOfJson(const std::string& text) {
    try {
        return "none: " + EncodeJson(text);
    } catch (const NotEncoded& problem) {
        return problem.what();
    }
}

// The text of a float is reported each time.
void TakeReportsOfFloats() {
    for (const std::string& report : TakeReports()) EXPECT_EQ(report, "TqFloat");
}

TEST(Items, HaveOffsetAndPayload) {
    const Decoded decoded = Decode(row, TypeList());
    EXPECT_EQ(decoded.problem, "");
    ASSERT_EQ(decoded.items.size(), 3u);
    EXPECT_EQ(decoded.items[1].offset, 9u);
    EXPECT_EQ(decoded.items[1].payload, "17");
    EXPECT_EQ(decoded.items[1].type, nullptr);
    EXPECT_TRUE(Decode("", TypeList()).items.empty());
}

TEST(Items, AreReadAsTheirTypes) {
    const Decoded decoded = Decode(row + row, Types({"string", "counter", "boolean"}));
    ASSERT_EQ(decoded.items.size(), 6u);
    EXPECT_EQ(decoded.items[4].type, FindType("counter"));
    EXPECT_EQ(decoded.items[4].value, "17");
    EXPECT_FALSE(decoded.Differs());
}

TEST(Items, ThatReadAsSomethingElseAreMarked) {
    const struct {
        const char* type;
        std::string payload;
        std::string value;
    } cases[] = {{"counter", "4294967295", "0"}, {"number", "abc", "0"},
                 {"number", "007", "7"},         {"boolean", "Maybe", "False"},
                 {"float", "2.5", "2."},         {"string", std::string("a\0b", 3), "a"}};
    for (const auto& tried : cases) {
        const Decoded decoded = Decode(EncodeItem(tried.payload, nullptr), Types({tried.type}));
        ASSERT_EQ(decoded.items.size(), 1u);
        EXPECT_EQ(decoded.items[0].value, tried.value) << tried.type;
        EXPECT_TRUE(decoded.items[0].differs) << tried.type << " " << tried.payload;
    }
    TakeReportsOfFloats();
}

TEST(Items, OfABufferTakeEveryByte) {
    const Decoded decoded = Decode(EncodeItem(AllBytes(), nullptr), Types({"buffer"}));
    ASSERT_EQ(decoded.items.size(), 1u);
    EXPECT_EQ(decoded.items[0].payload, AllBytes());
    EXPECT_FALSE(decoded.Differs());
}

TEST(Items, TellWhereTheBufferIsCorrupt) {
    EXPECT_EQ(ProblemOf(row + "00"), "25: an item begins with 5 digits; bytes left: 2");
    EXPECT_EQ(ProblemOf(row + "00003ab"), "25: the item says 00003 bytes; bytes left: 2");
    EXPECT_EQ(ProblemOf("hel\x01o"),
              "0: an item begins with 5 digits; here is \"hel*o\" (68 65 6c 01 6f)");
    EXPECT_EQ(ProblemOf("0001q"),
              "0: an item begins with 5 digits; here is \"0001q\" (30 30 30 31 71)");
    EXPECT_EQ(Decode(row + "00", TypeList()).items.size(), 3u);
}

TEST(Items, AreCorruptWhereTheListOfTypesIsNotThrough) {
    EXPECT_EQ(ProblemOf(row, Types({"string", "counter"})),
              "25: the buffer ends where a counter should be");
    EXPECT_EQ(ProblemOf("", Types({"string", "counter"})), "");
}

TEST(Items, OfEveryTruncatedBufferAreWholeOrSaidToBeCorrupt) {
    for (std::size_t length = 0; length <= row.size(); ++length) {
        const bool isWhole = length == 0 || length == 9 || length == 16 || length == 25;
        EXPECT_EQ(ProblemOf(row.substr(0, length)).empty(), isWhole) << length;
    }
}

TEST(ItemLines, BecomeOneItemEach) {
    EXPECT_EQ(EncodeLines("eth0\n17\nTrue\n", TypeList()), row);
    EXPECT_EQ(EncodeLines("eth0\n17\nTrue", TypeList()), row);
    EXPECT_EQ(EncodeLines("\n", TypeList()), "00000");
    EXPECT_EQ(EncodeLines("", TypeList()), "");
    EXPECT_EQ(EncodeLines(std::string("a\0b\n", 4), TypeList()), std::string("00003a\0b", 8));
}

TEST(ItemLines, AreWhatTheLibraryWritesForTheirTypes) {
    TqBuffer written;
    TqWrite(written, "x", -5, 7u, false, TqFloat(2.5f));
    const TypeList types = Types({"string", "number", "counter", "boolean", "float", "buffer"});
    EXPECT_EQ(EncodeLines("x\n-5\n+7\noff\n2.5\n00 ff0A\n", types),
              BytesOf(written) + std::string("00003\0\xff\n", 8));
    TakeReportsOfFloats();
}

TEST(ItemLines, ThatAreNoneAreRefusedWithTheirNumber) {
    EXPECT_EQ(ProblemOfLines("1\nx\n", Types({"number"})), "line 2: \"x\" is no number");
    EXPECT_EQ(ProblemOfLines("1\n\n", Types({"counter"})), "line 2: \"\" is no counter");
    EXPECT_EQ(ProblemOfLines(std::string("1\0\n", 3), Types({"number"})),
              "line 1: \"1*\" is no number");
    EXPECT_EQ(ProblemOfLines("abc", Types({"buffer"})), "line 1: \"abc\" is no buffer");
}

TEST(ItemLines, HoldUpTo99999Bytes) {
    EXPECT_EQ(EncodeLines(std::string(99999, 'x'), TypeList()), "99999" + std::string(99999, 'x'));
    EXPECT_EQ(ProblemOfLines(std::string(100000, 'x')),
              "line 1: 100000 bytes; an item holds up to 99999");
}

TEST(ItemHex, IsReadInPairs) {
    std::string bytes;
    EXPECT_TRUE(FromHex(ToHex(AllBytes(), " "), bytes));
    EXPECT_EQ(bytes, AllBytes());
    EXPECT_TRUE(FromHex("", bytes) && bytes.empty());
    EXPECT_TRUE(FromHex(" 00  fF ", bytes));
    EXPECT_EQ(bytes, std::string("\0\xff", 2));
    for (const char* wrong : {"0", "0g", "00 0", "0 0", "-1"}) {
        EXPECT_FALSE(FromHex(wrong, bytes)) << wrong;
        EXPECT_EQ(bytes, "");
    }
}

TEST(ItemJson, SaysAllThatIsKnown) {
    EXPECT_EQ(ToJson(Decode("0000217", Types({"counter"}))),
              "{\"items\": [\n  {\"offset\": 0, \"length\": 2, \"type\": \"counter\", "
              "\"value\": \"17\", \"text\": \"17\", \"hex\": \"3137\"}\n]}\n");
    EXPECT_EQ(ToJson(Decode("00001\x80x", TypeList())),
              "{\"items\": [\n  {\"offset\": 0, \"length\": 1, \"hex\": \"80\"}\n], \"corrupt\": "
              "{\"offset\": 6, \"problem\": \"an item begins with 5 digits; bytes left: 1\"}}\n");
    EXPECT_EQ(ToJson(Decode("", TypeList())), "{\"items\": []}\n");
}

TEST(ItemJson, EscapesWhatATextMayNotHold) {
    const std::string json = ToJson(Decode(EncodeItem("\x1f \x7f~\"\\/", nullptr), TypeList()));
    EXPECT_NE(json.find("\"text\": \"\\u001f \\u007f~\\\"\\\\/\""), std::string::npos) << json;
}

TEST(ItemJson, HasATextWhereAllOfItIsAscii) {
    const std::string ascii = ToJson(Decode(EncodeItem("\x7f", nullptr), TypeList()));
    EXPECT_NE(ascii.find("\"text\": "), std::string::npos) << ascii;
    const std::string other = ToJson(Decode(EncodeItem("a\x80", nullptr), TypeList()));
    EXPECT_EQ(other.find("\"text\": "), std::string::npos) << other;
}

TEST(ItemJson, MarksWhatReadsAsSomethingElse) {
    EXPECT_EQ(ToJson(Decode("00003abc", Types({"counter"}))),
              "{\"items\": [\n  {\"offset\": 0, \"length\": 3, \"type\": \"counter\", "
              "\"value\": \"0\", \"differs\": true, \"text\": \"abc\", \"hex\": \"616263\"}\n]}\n");
}

TEST(ItemJson, MayHaveBlanksBetweenAllOfItsParts) {
    const std::string blanks = " \t\r\n";
    std::string json;
    for (const char* part : {"{", "\"items\"", ":", "[",    "{", "\"text\"", ":", "\"a\"",
                             ",", "\"type\"",  ":", "null", "}", ",",        "{", "\"value\"",
                             ":", "-1.5e+9",   "}", "]",    "}"}) {
        json += blanks + part;
    }
    EXPECT_EQ(EncodeJson(json + blanks), "00001a00007-1.5e+9");
}

TEST(ItemJson, ComesBackAsItWent) {
    const std::string payloads[] = {"", "eth0", "\n", std::string(1, '\0'), AllBytes(), "\"\\/\b"};
    std::string bytes;
    for (const std::string& payload : payloads) bytes += EncodeItem(payload, nullptr);
    EXPECT_EQ(ThereAndBack(bytes), bytes);
    for (const char* type : {"string", "number", "counter", "boolean", "float", "buffer"}) {
        EXPECT_EQ(ThereAndBack(bytes, Types({type})), bytes) << type;
    }
    TakeReportsOfFloats();
}

TEST(ItemJson, OfRandomItemsComesBackAsItWent) {
    for (unsigned int seed = 0; seed < 50; ++seed) {
        std::string bytes;
        for (unsigned int i = 0; i < seed; ++i) {
            bytes += EncodeItem(RandomBytes((seed * 7 + i * 13) % 300, seed + i), nullptr);
        }
        EXPECT_EQ(ThereAndBack(bytes), bytes) << seed;
    }
}

TEST(ItemJson, IsTakenFromHexElseTextElseValue) {
    EXPECT_EQ(EncodeJson("[{\"hex\": \"00ff\", \"text\": \"no\"}]"), std::string("00002\0\xff", 7));
    EXPECT_EQ(EncodeJson("[{\"text\": \"eth0\", \"value\": \"no\"}]"), "00004eth0");
    EXPECT_EQ(EncodeJson("[{\"type\": \"counter\", \"value\": 17}]"), "0000217");
    EXPECT_EQ(EncodeJson("{\"items\": [{\"type\": \"boolean\", \"value\": true}]}"), "00004True");
    EXPECT_EQ(EncodeJson("[]"), "");
}

TEST(ItemJson, KnowsEveryEscape) {
    EXPECT_EQ(EncodeJson("[{\"text\": \"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u0041\\u00fc\\u20ac\"}]"),
              EncodeItem("\"\\/\b\f\n\r\tA\xc3\xbc\xe2\x82\xac", nullptr));
    EXPECT_EQ(EncodeJson("[{\"text\": \"\\ud83d\\ude00\\u0000\"}]"),
              EncodeItem(std::string("\xf0\x9f\x98\x80\0", 5), nullptr));
}

TEST(ItemJson, TakesTheFirstAndTheLastCharacterOfEveryLength) {
    EXPECT_EQ(EncodeJson("[{\"text\": \"\\u007f\\u0080\\u07ff\\u0800\\ud7ff\\ue000\\uffff\"}]"),
              EncodeItem("\x7f\xc2\x80\xdf\xbf\xe0\xa0\x80\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbf",
                         nullptr));
    EXPECT_EQ(
        EncodeJson("[{\"text\": \"\\ud800\\udc00\\ud800\\udfff\\udbff\\udc00\\udbff\\udfff\"}]"),
        EncodeItem("\xf0\x90\x80\x80\xf0\x90\x8f\xbf\xf4\x8f\xb0\x80\xf4\x8f\xbf\xbf", nullptr));
}

TEST(ItemJson, WithHalfACharacterIsRefused) {
    for (const char* half : {"ud800", "ud800x", "ud800\\n", "udbff", "udc00\\ud800", "udc00\\udc00",
                             "udfff", "ud800\\udbff", "ud800\\ue000"}) {
        const std::string problem = ProblemOfJson(std::string("[\"\\") + half + "\"]");
        EXPECT_NE(problem.find(": half a character"), std::string::npos) << half << ": " << problem;
    }
}

TEST(ItemJson, ThatIsNoneIsRefused) {
    EXPECT_EQ(ProblemOfJson(""), "JSON, byte 0: a value is missing");
    EXPECT_EQ(ProblemOfJson("[] x"), "JSON, byte 3: something follows the end");
    EXPECT_EQ(ProblemOfJson("[{\"text\": \"x\""), "JSON, byte 13: '}' is missing");
    EXPECT_EQ(ProblemOfJson("{\"items\" 5}"), "JSON, byte 9: ':' is missing");
    EXPECT_EQ(ProblemOfJson("[\"x"), "JSON, byte 3: a text does not end");
    EXPECT_EQ(ProblemOfJson("[\"\n\"]"), "JSON, byte 3: a control character in a text");
    EXPECT_EQ(ProblemOfJson("[\"\x1f\"]"), "JSON, byte 3: a control character in a text");
    EXPECT_EQ(ProblemOfJson("[\"\\x\"]"), "JSON, byte 4: an unknown escape");
    EXPECT_EQ(ProblemOfJson("[\"\\"), "JSON, byte 3: an unknown escape");
    EXPECT_EQ(ProblemOfJson("[\"\\u12\"]"), "JSON, byte 4: \\u takes four digits");
    EXPECT_EQ(ProblemOfJson("[\"\\udc00\"]"), "JSON, byte 8: half a character");
    EXPECT_EQ(ProblemOfJson("[] q"), "JSON, byte 3: something follows the end");
    EXPECT_EQ(ProblemOfJson(std::string(100, '[')), "JSON, byte 17: too many levels");
    std::string objects;
    for (int i = 0; i < 100; ++i) objects += "{\"\":";
    EXPECT_EQ(ProblemOfJson(objects), "JSON, byte 68: too many levels");
    EXPECT_EQ(ProblemOfJson("{5: 5}"), "JSON, byte 1: the name of a member is missing");
    EXPECT_EQ(ProblemOfJson("[5, 6}"), "JSON, byte 5: ']' is missing");
}

TEST(ItemJson, ThatSaysNoItemsIsRefused) {
    EXPECT_EQ(ProblemOfJson("{}"), "JSON: no \"items\"");
    EXPECT_EQ(ProblemOfJson("{\"items\": {}}"), "JSON: no \"items\"");
    EXPECT_EQ(ProblemOfJson("5"), "JSON: no \"items\"");
    EXPECT_EQ(ProblemOfJson("{\"items\": [], \"corrupt\": {}}"), "JSON: the buffer was corrupt");
    EXPECT_EQ(ProblemOfJson("[{\"text\": \"x\"}, 5]"), "item 2: is no object");
    EXPECT_EQ(ProblemOfJson("[{}]"), "item 1: has neither \"hex\" nor \"text\" nor \"value\"");
    EXPECT_EQ(ProblemOfJson("[{\"hex\": 12}]"), "item 1: \"hex\" is no text");
    EXPECT_EQ(ProblemOfJson("[{\"text\": 12}]"), "item 1: \"text\" is no text");
    EXPECT_EQ(ProblemOfJson("[{\"value\": 1, \"type\": 2}]"), "item 1: \"type\" is no text");
    EXPECT_EQ(ProblemOfJson("[{\"value\": 5, \"type\": \"date\"}]"), "item 1: \"date\" is no type");
    EXPECT_EQ(ProblemOfJson("[{\"value\": 5, \"type\": \"boolean\"}]"),
              "item 1: \"5\" is no boolean");
    EXPECT_EQ(ProblemOfJson("[{\"value\": []}]"), "item 1: \"value\" is neither text nor number");
    EXPECT_EQ(ProblemOfJson("[{\"value\": {}}]"), "item 1: \"value\" is neither text nor number");
}

#ifdef TQITEMS

class Tqitems : public testing::Test {
protected:
    // Runs it with the bytes on standard input.
    Program::Result Run(const std::vector<std::string>& words, const std::string& input = "") {
        WriteFile(directory.Path("input"), input);
        Program::Settings settings;
        settings.directory = directory.Path();
        settings.prepare = [] {
            const int file = open("input", O_RDONLY);
            dup2(file, STDIN_FILENO);
        };
        return RunProgram(Built(TQITEMS, words), settings);
    }

    TemporaryDirectory directory;
};

const char table[] =
    "  offset  length  type     hex                                              text\n"
    "       0       4  string   65 74 68 30                                      eth0\n"
    "       9       2  counter  31 37                                            17\n"
    "      16       4  boolean  54 72 75 65                                      True\n";

TEST_F(Tqitems, PrintsATable) {
    const Program::Result shown = Run({"-t", "string,counter,boolean"}, row);
    EXPECT_EQ(shown.output, table);
    EXPECT_EQ(shown.errors, "");
    EXPECT_EQ(shown.status, 0);
}

TEST_F(Tqitems, PrintsLongPayloadsInRows) {
    EXPECT_EQ(
        Run({}, "00018abcdefghijklmnop\nq").output,
        "  offset  length  hex                                              text\n"
        "       0      18  61 62 63 64 65 66 67 68 69 6a 6b 6c 6d 6e 6f 70  abcdefghijklmnop\n"
        "                  0a 71                                            *q\n");
}

TEST_F(Tqitems, PrintsOneRowForEveryOtherPayload) {
    EXPECT_EQ(
        Run({}, "00016abcdefghijklmnop00000").output,
        "  offset  length  hex                                              text\n"
        "       0      16  61 62 63 64 65 66 67 68 69 6a 6b 6c 6d 6e 6f 70  abcdefghijklmnop\n"
        "      21       0\n");
    EXPECT_EQ(Run({"-t", "string"}, "00001a").output,
              "  offset  length  type     hex                                              text\n"
              "       0       1  string   61                                               a\n");
}

TEST_F(Tqitems, ReadsAFile) {
    WriteFile(directory.Path("row"), row);
    EXPECT_EQ(Run({"--types=string,counter,boolean", "row"}).output, table);
}

TEST_F(Tqitems, TheExampleOfItsManualHolds) {
    const std::string manual = ReadFile(TQITEMS_MANUAL);
    EXPECT_NE(manual.find(table), std::string::npos);
    EXPECT_EQ(Run({"-e", "-t", "string,counter,boolean"}, "eth0\n17\nTrue\n").output, row);
}

TEST_F(Tqitems, SaysWhereABufferIsCorrupt) {
    const Program::Result shown = Run({}, row + "00003ab");
    EXPECT_NE(shown.output.find("True\n"), std::string::npos);
    EXPECT_EQ(shown.errors,
              "tqitems: standard input: corrupt at offset 25: the item says 00003 bytes; bytes "
              "left: 2\n");
    EXPECT_EQ(shown.status, 3);
}

TEST_F(Tqitems, MarksWhatReadsAsSomethingElse) {
    const Program::Result shown = Run({"-t", "counter"}, "00003abc");
    EXPECT_NE(shown.output.find("abc  read as 0\n"), std::string::npos) << shown.output;
    EXPECT_EQ(shown.status, 4);
}

TEST_F(Tqitems, JsonComesBackAsItWent) {
    const std::string bytes = EncodeItem(AllBytes(), nullptr) + EncodeItem("\n", nullptr) + "00000";
    const Program::Result json = Run({"--json"}, bytes);
    EXPECT_EQ(json.status, 0);
    EXPECT_EQ(Run({"--encode", "--json"}, json.output).output, bytes);
}

TEST_F(Tqitems, PrintsNothingOfWhatItCannotEncode) {
    const Program::Result shown = Run({"-e", "-t", "number"}, "1\nx\n");
    EXPECT_EQ(shown.output, "");
    EXPECT_EQ(shown.errors, "tqitems: standard input: line 2: \"x\" is no number\n");
    EXPECT_EQ(shown.status, 3);
}

TEST_F(Tqitems, ComplainsOfAFileThatItCannotRead) {
    const Program::Result shown = Run({"no\n"});
    EXPECT_EQ(shown.errors, "tqitems: no\\n: No such file or directory\n");
    EXPECT_EQ(shown.status, 1);
    EXPECT_EQ(Run({"."}).status, 1);
}

TEST_F(Tqitems, ReadsNoMoreThan256MiB) {
    if (runsSlowly) GTEST_SKIP() << "so much takes too long here";
    const std::string large = directory.Path("large");
    WriteFile(large, "");
    // With nothing in it, so that no room is taken.
    ASSERT_EQ(truncate(large.c_str(), 256 << 20), 0);
    const Program::Result all = Run({"large"});
    EXPECT_EQ(all.errors.substr(0, 36), "tqitems: large: corrupt at offset 0:");
    EXPECT_EQ(all.status, 3);

    ASSERT_EQ(truncate(large.c_str(), (256 << 20) + 1), 0);
    const Program::Result more = Run({"large"});
    EXPECT_EQ(more.errors, "tqitems: large: more than 256 MiB\n");
    EXPECT_EQ(more.status, 1);
}

TEST_F(Tqitems, ComplainsOfAnOutputThatIsFull) {
    if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full here";
    Program::Settings settings;
    settings.prepare = [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); };
    const Program::Result shown = RunProgram(Built(TQITEMS, {}), settings);
    EXPECT_EQ(shown.errors, "tqitems: standard output: No space left on device\n");
    EXPECT_EQ(shown.status, 1);
}

TEST_F(Tqitems, ComplainsOfHelpThatCannotBeWritten) {
    if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full here";
    Program::Settings settings;
    settings.prepare = [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); };
    EXPECT_EQ(RunProgram(Built(TQITEMS, {"--help"}), settings).status, 1);
}

TEST_F(Tqitems, ReadsStandardInputWhereTheFileIsADash) {
    const Program::Result shown = Run({"-jt", "string", "-"}, "00001x");
    EXPECT_EQ(shown.output, ToJson(Decode("00001x", Types({"string"}))));
    EXPECT_EQ(shown.errors, "");
}

const char usage[] = "usage: tqitems [-e] [-j] [-t TYPE,...] [FILE|-]\n";

TEST_F(Tqitems, RefusesAWrongCommandLine) {
    const std::string tryHelp = usage + std::string("Try 'tqitems --help'.\n");
    const std::string types =
        "no type; there are string, number, counter, boolean, float, buffer\n";
    const auto refused = [this](const std::vector<std::string>& words) {
        const Program::Result shown = Run(words);
        EXPECT_EQ(shown.status, 2);
        EXPECT_EQ(shown.output, "");
        return shown.errors;
    };
    EXPECT_EQ(refused({"one", "two"}), tryHelp);
    for (const char* word : {"-x", "-q", "-t", "--wrong"}) {
        const std::string errors = refused({word});
        EXPECT_GT(errors.size(), tryHelp.size()) << word;
        EXPECT_EQ(errors.substr(errors.size() - tryHelp.size()), tryHelp) << word;
    }
    EXPECT_EQ(refused({"-t", "string,date"}), "tqitems: date: " + types);
    EXPECT_EQ(refused({"-t", ""}), "tqitems: : " + types);
    EXPECT_EQ(refused({"-ejt", "string"}), "tqitems: -t: JSON says itself what its items are\n");
}

TEST_F(Tqitems, TellsItsVersionAndItsOptions) {
    for (const char* word : {"--version", "-V"}) {
        const Program::Result version = Run({word});
        EXPECT_EQ(version.status, 0);
        EXPECT_EQ(version.output, "tqitems " TQITEMS_VERSION "\n");
    }
    for (const char* word : {"--help", "-h"}) {
        const Program::Result help = Run({word});
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(
            help.output,
            usage +
                std::string("Shows the items of an encoded buffer: FILE, or standard input.\n"
                            "\n"
                            "  -e, --encode         the other way: encode each line into an item\n"
                            "  -t, --types=TYPE,... what the items are, in order; begins anew at "
                            "its end:\n"
                            "                       string, number, counter, boolean, float, "
                            "buffer\n"
                            "  -j, --json           print JSON; with -e, read it\n"
                            "  -h, --help           print this\n"
                            "  -V, --version        print the version\n"));
        EXPECT_EQ(help.errors, "");
    }
}

#endif

}  // namespace
