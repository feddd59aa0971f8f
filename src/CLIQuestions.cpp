#include <algorithm>
#include <cctype>
#include <iostream>
#include <stdexcept>

#include "src/CLI.h"
#include "src/stringhelper.h"

QA_Entry const QA_Map[] = {
    {"all", AnsAll},   {"help", AnsHelp}, {"?", AnsHelp},  {"no", AnsNo},
    {"quit", AnsQuit}, {"show", AnsShow}, {"yes", AnsYes}, {nullptr, AnsError},
};

namespace {

constexpr int LineSize = 250;  // characters, the terminating null included

// "renmaining" is misspelt in this text alone, and stays so.
constexpr char DeviceHelp[] =
    "   yes   Update this device\n"
    "   no    Do not update this device (default)\n"
    "   quit  Do not update any renmaining devices\n"
    "   help  This text";

constexpr char GroupHelp[] =
    "   yes   Update this device\n"
    "   no    Do not update this device (default)\n"
    "   quit  Do not update any remaining devices\n"
    "   help  This text";

}  // namespace

bool CLI::isPrefix(std::string const& word, std::string const& text) {
    return word.starts_with(text);
}

std::string CLI::getLine(std::string const& prompt, std::string const& defaultAnswer) {
    for (;;) {
        std::cerr << prompt << std::flush;  // tied to std::cout: console text goes out first
        char buffer[LineSize];
        std::cin.getline(buffer, LineSize);
        // A last line without a line end fails too: the stream has met the end of input by then.
        if (!std::cin.good()) throw std::runtime_error("console input failure");
        std::string line(buffer);
        if (!line.empty()) {
            std::transform(line.begin(), line.end(), line.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            return line;
        }
        if (!defaultAnswer.empty()) return defaultAnswer;
    }
}

Answer CLI::getAnswer(std::string const& prompt, std::string const& defaultAnswer) {
    for (;;) {
        std::string const line = getLine(prompt, defaultAnswer);
        int matches = 0;
        Answer answer = AnsError;
        for (QA_Entry const* row = QA_Map; row->word; ++row) {
            if (!isPrefix(row->word, line)) continue;
            ++matches;
            answer = row->answer;
        }
        if (matches == 1) return answer;
        std::cerr << (matches ? "Ambiguous entry.  Please enter more characters." : "Unrecognized input.")
                  << std::endl;
    }
}

Answer CLI::getUserAnswer(std::string const& prompt, std::string const& defaultAnswer) {
    return getAnswer(prompt, defaultAnswer);
}

Answer CLI::getGroupAnswer(std::string const& prompt, std::string const& group) {
    std::string const name = trim(group);
    auto const remembered = GroupAnswer.find(name);
    if (name.empty() || remembered == GroupAnswer.end()) return AnsEmpty;
    for (QA_Entry const* row = QA_Map; row->word; ++row) {
        if (row->answer != remembered->second) continue;
        std::cerr << prompt << row->word << std::endl;
        break;
    }
    return remembered->second;
}

Answer CLI::askFlashIt(int mode) {
    std::cerr << std::flush;
    std::string const prompt = mode == 1 ? "(yes/no) " : " [NO, yes, quit] ";
    for (;;) {
        Answer const answer = getAnswer(prompt, "no");
        if (answer == AnsHelp) {
            std::cerr << DeviceHelp << std::endl;
        } else if (answer != AnsShow) {
            return answer;
        }
    }
}

Answer CLI::askFlashIt(std::string const& group, int count) {
    std::string const prompt =
        count == 1 ? "Flash this device? [NO, yes, quit] " : "Flash these devices? [NO, yes, quit] ";
    Answer answer = getGroupAnswer(prompt, group);
    if (answer != AnsEmpty) return answer;
    for (;;) {
        answer = getUserAnswer(prompt, "no");
        if (answer == AnsHelp) {
            std::cerr << GroupHelp << std::endl;
        } else if (answer != AnsShow) {
            GroupAnswer[trim(group)] = answer;
            return answer;
        }
    }
}
