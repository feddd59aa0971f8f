#include "tests/support/package_run.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "simulator/s_record.h"

namespace fs = std::filesystem;

namespace {

/// A file that the child writes to and the parent reads when it has ended: no pipe can fill up.
class Capture {
  public:
    Capture() : m_file(std::tmpfile()) {
        if (m_file == nullptr) {
            throw std::runtime_error("no temporary file");
        }
    }
    ~Capture() { std::fclose(m_file); }
    Capture(Capture const&) = delete;
    Capture& operator=(Capture const&) = delete;

    int descriptor() const { return fileno(m_file); }
    std::string text() const {
        std::string contents;
        char buffer[65536];
        std::rewind(m_file);
        while (std::size_t const count = std::fread(buffer, 1, sizeof buffer, m_file)) {
            contents.append(buffer, count);
        }
        return contents;
    }
    void fill(std::string const& text) const {
        std::fwrite(text.data(), 1, text.size(), m_file);
        std::fflush(m_file);
        std::rewind(m_file);
    }

  private:
    std::FILE* m_file;
};

}  // namespace

RunResult runProgram(std::vector<std::string> const& arguments, fs::path const& directory,
                     std::string const& input) {
    Capture const in;
    Capture const out;
    Capture const error;
    in.fill(input);
    std::vector<char*> words;
    for (std::string const& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    pid_t const child = ::fork();
    if (child == 0) {
        ::lseek(in.descriptor(), 0, SEEK_SET);
        ::dup2(in.descriptor(), STDIN_FILENO);
        ::dup2(out.descriptor(), STDOUT_FILENO);
        ::dup2(error.descriptor(), STDERR_FILENO);
        if (::chdir(directory.c_str()) == 0) {
            ::execv(words[0], words.data());
        }
        ::_exit(127);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    RunResult result;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.output = out.text();
    result.errors = error.text();
    return result;
}

std::string readText(fs::path const& file) {
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

void writeText(fs::path const& file, std::string const& text) {
    std::ofstream stream(file, std::ios::binary);
    stream << text;
}

std::string builtProgram(std::string const& name) {
    return std::string(KSL_BINARY_DIR) + "/" + name;
}

PackageRun::PackageRun(std::string const& package) {
    std::string name = (fs::temp_directory_path() / "ksl-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary directory");
    }
    m_directory = name;
    fs::copy(fs::path(KSL_BINARY_DIR) / "examples" / package, m_directory, fs::copy_options::recursive);
    resetMachine();
}

PackageRun::~PackageRun() {
    std::error_code ignored;
    fs::remove_all(m_directory, ignored);
}

void PackageRun::resetMachine() const {
    fs::remove_all(machineDirectory());
    simulator::Machine::create(machineDirectory(), m_directory / "machine.json");
}

RunResult PackageRun::flash(std::vector<std::string> const& arguments, std::string const& input,
                            std::vector<std::string> const& faults) const {
    std::vector<std::string> words = {builtProgram("ksl-machine"), "exec"};
    for (std::string const& fault : faults) {
        words.insert(words.end(), {"--fault", fault});
    }
    words.insert(words.end(), {"M", "--", builtProgram("kslflash")});
    words.insert(words.end(), arguments.begin(), arguments.end());
    return runProgram(words, m_directory, input);
}

void PackageRun::powerCycle() const {
    simulator::Machine(machineDirectory()).powerCycle();
}

std::vector<simulator::DeviceSummary> PackageRun::devices() const {
    return simulator::Machine(machineDirectory()).devices();
}

std::string PackageRun::firmware(std::string const& device) const {
    for (simulator::DeviceSummary const& summary : devices()) {
        if (summary.name == device) {
            return device + " " + summary.running + "/" + summary.stored + " " + summary.state;
        }
    }
    return device + " is not there";
}

std::vector<simulator::JournalEntry> PackageRun::journal() const {
    return simulator::readJournal(machineDirectory() / "journal.jsonl");
}

simulator::Bytes PackageRun::romImage(std::string const& device) const {
    return simulator::Machine(machineDirectory()).romImage(device, simulator::Rom::Active);
}

std::string PackageRun::fileStoredIn(std::string const& device) const {
    // The title that the package's S-records begin with: product and version, as the image has them.
    constexpr std::size_t PRODUCT = 8, PRODUCT_SIZE = 11, VERSION = 24, VERSION_SIZE = 4;
    simulator::Bytes const rom = romImage(device);
    std::string const bytes(rom.begin(), rom.end());
    if (bytes.size() < VERSION + VERSION_SIZE) return "";
    std::string const records = simulator::makeSRecords(
        rom, bytes.substr(PRODUCT, PRODUCT_SIZE) + " " + bytes.substr(VERSION, VERSION_SIZE));
    for (auto const& entry : fs::directory_iterator(m_directory)) {
        if (!entry.is_regular_file()) continue;
        std::string const text = readText(entry.path());
        if (text == bytes || text == records) return entry.path().filename().string();
    }
    return "";
}

void PackageRun::removeLogs() const {
    fs::remove(logDirectory() / "Component.log");
    fs::remove(logDirectory() / "Verbose.log");
}
