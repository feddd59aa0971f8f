// Input that nobody should give: broken packages and absurd options. The program must end with a code of its
// table, write to no device that wasn't chosen, and say what is wrong.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <functional>

#include "simulator/rom_image.h"
#include "tests/program/hostile_fixture.h"

namespace hostile {
namespace {

constexpr char CATALOGUE[] = "Config.xml";
constexpr char COMPONENT[] = "dogwood.xml";
constexpr char IMAGE[] = "dogwood-6.64.rom";

std::string repeated(std::string const& text, std::size_t count) {
    std::string result;
    result.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

std::string escaped(std::string const& text) {
    std::string result;
    for (char const c : text) {
        result += c == '<' ? "&lt;" : c == '&' ? "&amp;" : c == '"' ? "&quot;" : std::string(1, c);
    }
    return result;
}

std::string entry(std::string const& bucket, std::string const& name, std::string const& payload,
                  std::string const& version) {
    return "<Device><b>" + escaped(bucket) + "</b><n>" + escaped(name) + "</n><p>" + escaped(payload) +
           "</p><v>" + escaped(version) + "</v></Device>";
}

std::string catalogue(std::string const& entries, std::string const& component = "dogwood") {
    return "<Devices>" + entries + "<cpxml><n>" + escaped(component) + "</n></cpxml></Devices>";
}

std::string components(Strings const& tags) {
    std::string keys;
    for (std::string const& tag : tags)
        keys += "<sw_key name=\"" + escaped(tag) + "\"/>";
    return "<ksl_package><sw_keys><sw_keys_and>" + keys + "</sw_keys_and></sw_keys></ksl_package>";
}

/// Ways in which a file of a package can be no document.
struct BadFile {
    char const* what;
    std::function<void(fs::path const&)> make;
};

std::vector<BadFile> const& badFiles() {
    static auto const text = [](std::string const& contents) {
        return [contents](fs::path const& path) { writeText(path, contents); };
    };
    static std::vector<BadFile> const files = {
        {"missing", [](fs::path const&) {}},
        {"empty", text("")},
        {"a directory", [](fs::path const& path) { fs::create_directory(path); }},
        {"a link to nowhere", [](fs::path const& path) { fs::create_symlink("nowhere", path); }},
        {"a link to itself", [](fs::path const& path) { fs::create_symlink(path.filename(), path); }},
        {"a pipe that nobody writes to", [](fs::path const& path) { ::mkfifo(path.c_str(), 0600); }},
        {"an endless device", [](fs::path const& path) { fs::create_symlink("/dev/zero", path); }},
        {"words", text("no document at all")},
        {"zeros", text(std::string(10000, '\0'))},
        {"another document", text("<other><Device/></other>")},
        {"no characters of any set", text("<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>\xff\xfe\xfd</a>")},
        {"an unknown character set", text("<?xml version=\"1.0\" encoding=\"KLINGON\"?><Devices/>")},
        {"half a wide character set", text(std::string("\xff\xfe<\0D\0e", 7))},
        {"nothing but beginnings", text(repeated("<Devices>", 1000))},
        {"entities of entities",
         text("<!DOCTYPE a [<!ENTITY a \"0123456789\"><!ENTITY b \"" + repeated("&a;", 100) +
              "\"><!ENTITY c \"" + repeated("&b;", 100) + "\"><!ENTITY d \"" + repeated("&c;", 100) +
              "\">]><Devices>&d;</Devices>")},
        {"an entity that is a file", text("<!DOCTYPE a [<!ENTITY f SYSTEM "
                                          "\"/etc/passwd\">]><Devices><cpxml><n>&f;</n></cpxml></Devices>")},
        {"deep", text(repeated("<a>", 200000) + repeated("</a>", 200000))},
        {"deep without an end", text("<Devices>" + repeated("<Device>", 200000))},
        {"one long name", text("<" + std::string(1000000, 'a') + "/>")},
    };
    return files;
}

TEST_F(HostileInput, ACatalogueThatIsNone) {
    for (BadFile const& bad : badFiles()) {
        SCOPED_TRACE(bad.what);
        fs::remove_all(file(CATALOGUE));
        bad.make(file(CATALOGUE));
        RunResult const result = run({"-s"});
        EXPECT_EQ(3, result.status);
        EXPECT_EQ("", result.errors);
        std::string const complaint = "Error: XML data invalid. <Devices>\n";
        EXPECT_TRUE(result.output == complaint + complaint || result.output.empty()) << result.output;
        bool const holdsDevices = fs::is_regular_file(fs::symlink_status(file(CATALOGUE))) &&
                                  readText(file(CATALOGUE)).find("<Devices>") != std::string::npos;
        if (!holdsDevices) {
            EXPECT_EQ(complaint + complaint, result.output) << "once for each pass";
        }
    }
    expectUntouched();
}

TEST_F(HostileInput, AComponentFileThatIsNone) {
    for (BadFile const& bad : badFiles()) {
        SCOPED_TRACE(bad.what);
        fs::remove_all(file(COMPONENT));
        bad.make(file(COMPONENT));
        RunResult const result = run({"-s"});
        EXPECT_EQ(3, result.status);
        EXPECT_EQ("", result.errors);
    }
    expectUntouched();
}

/// A document that ends early holds what stands before its end. Whatever that is: a device is left alone or
/// gets the whole image.
TEST_F(HostileInput, DocumentsCutShort) {
    std::string const image = readText(file(IMAGE));
    for (char const* name : {CATALOGUE, COMPONENT}) {
        std::string const whole = readText(file(name));
        std::size_t updates = 0;
        for (unsigned part = 0; part < 20; ++part) {
            SCOPED_TRACE(std::string(name) + " cut at " + std::to_string(whole.size() * part / 20));
            replace(name, whole.substr(0, whole.size() * part / 20));
            package.resetMachine();
            int const status = run({"-s"}).status;
            if (status == 1) {
                ++updates;
                EXPECT_EQ(FLASHED, package.firmware("left"));
                simulator::Bytes const rom = package.romImage("left");
                EXPECT_EQ(image, std::string(rom.begin(), rom.end()));
            } else {
                EXPECT_EQ(3, status);
                expectUntouched();
            }
        }
        EXPECT_LT(updates, 20U);
        replace(name, whole);
    }
}

/// The last entry of a bucket counts, also behind tens of thousands.
TEST_F(HostileInput, AHugeCatalogueStillServes) {
    std::string entries =
        repeated(entry("1", "no such device with quite a long name", "missing.rom", "1.00"), 25000) +
        repeated(entry("7", "", "", ""), 25000) + entry("0", "", IMAGE, "6.64");
    ASSERT_GT(entries.size(), 3000000U);
    replace(CATALOGUE, catalogue(entries));
    EXPECT_EQ(1, run({"-s"}).status);
    EXPECT_EQ(FLASHED, package.firmware("left"));
}

TEST_F(HostileInput, DocumentsBeyondTheLimitAreReadInPart) {
    std::string const blanks(9 << 20, ' ');
    replace(CATALOGUE,
            "<Devices>" + entry("0", "", IMAGE, "6.64") + blanks + "<cpxml><n>dogwood</n></cpxml></Devices>");
    EXPECT_EQ(3, run({"-s"}).status);
    EXPECT_NE(std::string::npos,
              package.verboseLog().find("Config.xml: more than 8388608 bytes found, the rest is refused\n"));
    expectUntouched();
}

TEST_F(HostileInput, ManyTags) {
    Strings tags;
    for (unsigned i = 0; i < 3000; ++i)
        tags.push_back("TAG" + std::to_string(i));
    tags.push_back("33541E5C");
    replace(COMPONENT, components(tags));
    EXPECT_EQ(1, run({"-s"}).status);
    EXPECT_EQ(FLASHED, package.firmware("left"));
}

TEST_F(HostileInput, BucketNumbers) {
    struct Row {
        char const* bucket;
        int status;
        bool isSkipped;  ///< a line of the verbose log says so
    };
    static Row const rows[] = {
        {"-1", 3, true},
        {"3", 3, true},
        {"99999999999", 3, true},
        {"-99999999999", 3, true},
        {"2147483648", 3, true},
        {"-2147483649", 3, true},
        {"4294967296", 3, true},
        {"18446744073709551616", 3, true},
        {"1", 3, false},
        {"2", 3, false},
        {"1e9", 3, false},
        {" 2", 3, false},
        // No number is bucket 0.
        {"", 1, false},
        {"abc", 1, false},
        {"0x2", 1, false},
        {"-0", 1, false},
        {"%n", 1, false},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.bucket);
        package.resetMachine();
        replace(CATALOGUE, catalogue(entry(row.bucket, "THE NAME", IMAGE, "6.64")));
        EXPECT_EQ(row.status, run({"-s"}).status);
        EXPECT_EQ(row.status == 1 ? FLASHED : OLD, package.firmware("left"));
        EXPECT_EQ(row.status == 1, writes() != 0);
        std::string const line = std::string("Config.xml: device THE NAME skipped: bucket ") + row.bucket +
                                 " found, 0 to 2 expected\n";
        EXPECT_EQ(row.isSkipped, package.verboseLog().find(line) != std::string::npos);
    }
}

TEST_F(HostileInput, VersionsOfAnyText) {
    struct Row {
        std::string version;
        int status;
    };
    // Four characters count, and what isn't a digit counts for nothing: most of these are old.
    static Row const rows[] = {
        {"", 3},
        {"abcd", 3},
        {"....", 3},
        {"%s%n", 3},
        {"-5.9", 3},
        {"\xff\xff", 3},
        {"99%s%n%s%n%s", 1},
        {std::string(5000, '9'), 1},
        {"9999999999999999999999", 1},
        {"99\"/><x>", 1},
        {"-9.9", 1},  // nor does a sign
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.version.substr(0, 20));
        package.resetMachine();
        replace(CATALOGUE, catalogue(entry("0", "", IMAGE, row.version)));
        bool const isText = row.version.find('\xff') == std::string::npos;
        EXPECT_EQ(row.status, run({"-s"}).status);
        EXPECT_EQ(row.status == 1 ? FLASHED : OLD, package.firmware("left"));
        if (row.status == 1 && isText) {
            std::string const line = "Updated: TR56 Slot: 1 from 6.40 to " + row.version + "\n";
            EXPECT_NE(std::string::npos, package.componentLog().find(line));
        }
    }
}

TEST_F(HostileInput, NamesOfAnyText) {
    std::string const texts[] = {
        std::string(5000, 'N'),
        "%s%n%s%n%s%n%s%n",
        "\"quoted\" & <marked>",
        "../../../../etc/passwd",
        "a\nb\nc",
        "..",
        "/",
        " ",
        "\t",
    };
    struct Row {
        char const* what;
        std::function<std::string(std::string const&)> document;
        int status;
    };
    Row const rows[] = {
        {"device", [](std::string const& text) { return catalogue(entry("0", text, IMAGE, "6.64")); }, 1},
        {"component", [](std::string const& text) { return catalogue(entry("0", "", IMAGE, "6.64"), text); },
         3},
        {"payload", [](std::string const& text) { return catalogue(entry("0", "", text, "6.64")); }, 7},
    };
    for (Row const& row : rows) {
        for (std::string const& text : texts) {
            SCOPED_TRACE(row.what + (" " + text.substr(0, 20)));
            package.resetMachine();
            replace(CATALOGUE, row.document(text));
            bool const isFile = row.status == 7 && text.find("passwd") != std::string::npos;
            // A file that is there and no image is refused by the device.
            EXPECT_EQ(isFile && fs::exists(package.directory() / text) ? 9 : row.status, run({"-s"}).status);
            EXPECT_EQ(row.status == 1, package.firmware("left") == FLASHED);
            if (row.status == 3) expectUntouched();
        }
    }
}

TEST_F(HostileInput, TagsOfAnyText) {
    struct Row {
        std::string tag;
        int status;
    };
    static Row const rows[] = {
        {std::string(5000, '3'), 3}, {"%s%n%s%n", 3},  {"\"<&>", 3}, {"33541E5C%n", 3},
        {" 33541e5c ", 1},           {"33541E5C9", 3}, {"3", 1},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.tag.substr(0, 20));
        package.resetMachine();
        replace(COMPONENT, components({row.tag}));
        EXPECT_EQ(row.status, run({"-s"}).status);
        EXPECT_EQ(row.status == 1 ? FLASHED : OLD, package.firmware("left"));
        if (row.status == 3) expectUntouched();
        EXPECT_EQ(3, run({"-d", "out.xml", "-s"}).status);
    }
}

TEST_F(HostileInput, OptionsWithAbsurdArguments) {
    struct Row {
        char const* option;
        int status;
    };
    static Row const rows[] = {
        {"-k", 0},  {"-d", 3}, {"-l", 0}, {"-t", 0}, {"-x", 0}, {"-xd", 0},
        {"-x~", 0}, {"-v", 0}, {"-u", 0}, {"-i", 0}, {"-z", 0}, {"-y", 0},
    };
    std::string const texts[] = {std::string(5000, 'A'), "%s%n%s%n%s%n\"<&>\xff\x01",
                                 "-99999999999999999999999999"};
    for (Row const& row : rows) {
        for (std::string const& text : texts) {
            SCOPED_TRACE(row.option + text.substr(0, 20));
            RunResult const result = run({"-q", "-s", row.option + text});
            // Letters of an unknown option's argument are options themselves.
            if (row.option != std::string("-y")) {
                EXPECT_EQ(row.status, result.status);
            }
            EXPECT_EQ("", result.errors);
            bool const isPath = row.option == std::string("-d") || row.option == std::string("-l");
            std::string const complaint = "Failed to open log file " + text + " - File name too long\n";
            EXPECT_EQ(isPath && text.size() > 255 ? complaint : "", result.output);
        }
    }
    expectUntouched();
}

TEST_F(HostileInput, ThousandsOfArguments) {
    Strings arguments(3000, "-tX");
    arguments.insert(arguments.end(), 1000, "word");
    arguments.insert(arguments.end(), {"-q", "-s"});
    EXPECT_EQ(0, run(arguments).status);
    expectUntouched();
}

TEST_F(HostileInput, ADocumentThatCannotBeWritten) {
    fs::create_directory(file("folder"));
    writeText(file("plain"), "");
    struct Row {
        char const* path;
        char const* reason;
    };
    static Row const rows[] = {{"nowhere/out.xml", "No such file or directory"},
                               {"folder", "Is a directory"},
                               {"plain/out.xml", "Not a directory"}};
    for (Row const& row : rows) {
        RunResult const result = run({"-d", row.path, "-s"});
        EXPECT_EQ(3, result.status);
        EXPECT_EQ(std::string("Failed to open log file ") + row.path + " - " + row.reason + "\n",
                  result.output);
        EXPECT_EQ("", result.errors);
    }
    RunResult const empty = run({"-d", "", "-s"});
    EXPECT_EQ(3, empty.status);
    EXPECT_EQ("", empty.output);
    expectUntouched();
}

TEST_F(HostileInput, NoPlaceForTheLogs) {
    struct Row {
        char const* what;
        std::function<void(fs::path const&)> make;
        char const* reason;
    };
    Row const rows[] = {
        {"missing", [](fs::path const&) {}, "No such file or directory"},
        {"a file", [](fs::path const& path) { writeText(path, ""); }, "Not a directory"},
        {"a link to nowhere", [](fs::path const& path) { fs::create_symlink("nowhere", path); },
         "No such file or directory"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        package.resetMachine();
        fs::remove_all(package.logDirectory());
        row.make(package.logDirectory());
        RunResult const result = run({"-s"});
        EXPECT_EQ(1, result.status) << "the update is made all the same";
        EXPECT_EQ(FLASHED, package.firmware("left"));
        std::string const reason = row.reason;
        EXPECT_EQ("Failed to open verbose log file " + reason +
                      "\nFailed to open log file /var/ksl/Component.log - " + reason + "\n",
                  result.output);
    }
}

TEST_F(HostileInput, ImagesThatAreNone) {
    std::string const good = readText(file(IMAGE));
    auto const text = [](std::string const& contents) {
        return [contents](fs::path const& path) { writeText(path, contents); };
    };
    auto const changed = [&](std::size_t at) {
        std::string image = good;
        image[at] = static_cast<char>(image[at] ^ 1);
        return image;
    };
    simulator::Bytes const stranger = simulator::makeImage("CEDAR", "6.64", 5000, 1);
    struct Row {
        char const* what;
        std::function<void(fs::path const&)> make;
        int status;
        char const* left;
    };
    static constexpr char REFUSED[] = "left 6.40/6.40 paused";
    Row const rows[] = {
        {"missing", [](fs::path const&) {}, 7, OLD},
        {"a directory", [](fs::path const& path) { fs::create_directory(path); }, 7, OLD},
        {"a link to nowhere", [](fs::path const& path) { fs::create_symlink("nowhere", path); }, 7, OLD},
        {"a pipe", [](fs::path const& path) { ::mkfifo(path.c_str(), 0600); }, 7, OLD},
        {"a device", [](fs::path const& path) { fs::create_symlink("/dev/zero", path); }, 7, OLD},
        {"larger than all memory",
         [](fs::path const& path) {
             writeText(path, "");
             fs::resize_file(path, std::uintmax_t{1} << 40);
         },
         7, OLD},
        {"empty", text(""), 1, OLD},  // a success that sends nothing
        {"one byte", text("K"), 9, REFUSED},
        {"zeros", text(std::string(50000, '\0')), 9, REFUSED},
        {"a byte short", text(good.substr(0, good.size() - 1)), 9, REFUSED},
        {"a chunk short", text(good.substr(0, good.size() - 16384)), 9, REFUSED},
        {"a byte long", text(good + "x"), 9, REFUSED},
        {"another magic", text(changed(0)), 9, REFUSED},
        {"another header", text(changed(30)), 9, REFUSED},
        {"a changed byte in the middle", text(changed(good.size() / 2)), 9, REFUSED},
        {"a changed last byte", text(changed(good.size() - 1)), 9, REFUSED},
        {"of another family", text(std::string(stranger.begin(), stranger.end())), 9, REFUSED},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        package.resetMachine();
        fs::remove_all(file(IMAGE));
        row.make(file(IMAGE));
        RunResult const result = run({"-s"});
        EXPECT_EQ(row.status, result.status);
        EXPECT_EQ("", result.output + result.errors);
        EXPECT_EQ(row.left, package.firmware("left"));
        EXPECT_EQ("right 6.64/6.64 ok", package.firmware("right")) << "not chosen";
        EXPECT_EQ(row.status == 9, writes() != 0);
        bool const isLogged =
            package.componentLog().find("Failed: TR56 Slot: 1 from 6.40 to 6.64\n") != std::string::npos;
        EXPECT_EQ(row.status == 9, isLogged);
        for (auto const& exchange : package.journal())
            EXPECT_TRUE(exchange.block.empty() || exchange.block[0] != 0x27 || exchange.device == "left");
    }
}

}  // namespace
}  // namespace hostile
