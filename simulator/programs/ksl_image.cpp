/// ksl-image: makes and shows the firmware images that virtual controllers accept (rom_image.h).

#include <charconv>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "simulator/error.h"
#include "simulator/files.h"
#include "simulator/rom_image.h"
#include "simulator/s_record.h"

namespace {

constexpr char const* HELP =
    "ksl-image make FILE --family FAMILY --version VERSION --size BYTES [--seed NUMBER]\n"
    "        [--format blocks|srecords]\n"
    "    writes an image of BYTES in all; the seed (default 1) determines its payload;\n"
    "    as S-records it is the same image as text\n"
    "ksl-image show FILE\n"
    "    what the image says of itself, and whether it is sound (exit status 1 when it isn't)\n";

constexpr std::uint64_t LARGEST_IMAGE = 1U << 30;

/// A mistake on the command line; the message says what was found and what was expected.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::uint64_t number(std::string const& option, std::string const& text, std::uint64_t least,
                     std::uint64_t greatest) {
    std::uint64_t value = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < least || value > greatest)
        throw UsageError(option + ": found \"" + text + "\", expected a number from " +
                         std::to_string(least) + " to " + std::to_string(greatest));
    return value;
}

std::string text(std::string const& option, std::string const& value, std::size_t longest) {
    if (value.empty() || value.size() > longest)
        throw UsageError(option + ": found \"" + value + "\", expected 1 to " + std::to_string(longest) +
                         " characters");
    return value;
}

int make(std::vector<std::string> const& arguments) {
    if (arguments.empty()) throw UsageError("make: found no FILE, expected one");
    std::string family;
    std::string version;
    std::uint64_t size = 0;
    std::uint64_t seed = 1;
    bool asRecords = false;
    for (std::size_t i = 1; i < arguments.size(); i += 2) {
        std::string const& option = arguments[i];
        if (i + 1 == arguments.size()) throw UsageError(option + ": found no value, expected one");
        std::string const& value = arguments[i + 1];
        if (option == "--family")
            family = text(option, value, simulator::IMAGE_FAMILY_SIZE);
        else if (option == "--version")
            version = text(option, value, simulator::IMAGE_VERSION_SIZE);
        else if (option == "--size")
            size = number(option, value, simulator::IMAGE_HEADER_SIZE, LARGEST_IMAGE);
        else if (option == "--seed")
            seed = number(option, value, 0, UINT64_MAX);
        else if (option == "--format" && (value == "blocks" || value == "srecords"))
            asRecords = value == "srecords";
        else if (option == "--format")
            throw UsageError("--format: found \"" + value + "\", expected blocks or srecords");
        else
            throw UsageError("found \"" + option +
                             "\", expected --family, --version, --size, --seed or --format");
    }
    if (family.empty() || version.empty() || size == 0)
        throw UsageError("make: expected --family, --version and --size");
    simulator::Bytes const image = simulator::makeImage(family, version, size, seed);
    if (asRecords)
        simulator::writeText(arguments[0], simulator::makeSRecords(image, family + " " + version));
    else
        simulator::writeWholeFile(arguments[0], image);
    return 0;
}

int show(std::vector<std::string> const& arguments) {
    if (arguments.size() != 1) throw UsageError("show: expected one FILE");
    simulator::Bytes image = simulator::readWholeFile(arguments[0]);
    std::string problem;
    if (!image.empty() && image[0] == 'S') {
        simulator::SRecordReader reader;
        problem = reader.read({reinterpret_cast<char const*>(image.data()), image.size()});
        if (problem.empty() && !reader.ended) problem = "S-records without an end record";
        image = std::move(reader.image);
    }
    simulator::ImageInfo info;
    if (std::string const found = simulator::checkImage(image, info); problem.empty()) problem = found;
    std::printf(
        "file     %s\nbytes    %zu\nfamily   %s\nversion  %s\npayload  %u bytes, CRC-32 0x%08X\nimage    "
        "%s\n",
        arguments[0].c_str(), image.size(), info.family.c_str(), info.version.c_str(), info.payloadLength,
        info.payloadCrc, problem.empty() ? "sound" : problem.c_str());
    return problem.empty() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    std::string const command = arguments.empty() ? "" : arguments[0];
    if (!arguments.empty()) arguments.erase(arguments.begin());
    try {
        if (command == "make") return make(arguments);
        if (command == "show") return show(arguments);
        if (command == "--help") {
            std::fputs(HELP, stdout);
            return 0;
        }
        throw UsageError("found \"" + command + "\", expected make, show or --help");
    } catch (std::exception const& error) {
        std::fprintf(stderr, "ksl-image: %s\n", error.what());
        return 2;
    }
}
