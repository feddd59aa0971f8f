#pragma once

#include <cstdarg>
#include <map>
#include <string>

enum Answer {
    AnsError = 0,
    AnsEmpty = 1,
    AnsYes = 2,
    AnsNo = 3,
    AnsHelp = 4,
    AnsAll = 5,
    AnsQuit = 6,
    AnsShow = 7,
};

/// A word that a person may type, or any beginning of it, and what it means.
struct QA_Entry {
    char const* word;
    Answer answer;
};

/// Ends at a null word. The order matters for the look-up by answer alone, which takes the first row.
extern QA_Entry const QA_Map[];

/// The front end's way to talk: to the console, the two logs, the discovery document and the person at the
/// keyboard. Every write to a file opens it for appending and closes it again; a file that can't be opened
/// loses the line, which is reported once per process and kind of file on standard output, also when silent.
/// Nothing is truncated. Console output is flushed, so that it stands before a prompt on standard error.
class CLI {
  public:
    explicit CLI(std::string verboseLogPath = "/var/ksl/Verbose.log");

    /// No console output; the logs and the prompts are not concerned.
    void setSilent(bool silent) { m_Silent = silent; }
    bool isSilent() const { return m_Silent; }
    /// The verbose log is written.
    void setVerbose(bool verbose) { m_Verbose = verbose; }
    bool isVerbose() const { return m_Verbose; }
    /// Path of the ordinary log; empty turns it off.
    void setLogFile(std::string const& path) { m_LogFileName = path; }
    /// Path of the discovery document; empty means none.
    void setXMLFile(std::string const& path) { m_xmlFileName = path; }
    /// Whether -d named a file.
    bool hasDocument() const { return !m_xmlFileName.empty(); }

    /// To standard output, unless silent.
    void printMsg(char const* format, ...) __attribute__((format(printf, 2, 3)));
    /// To the ordinary log.
    void log(char const* format, ...) __attribute__((format(printf, 2, 3)));
    /// To the ordinary log, then as printMsg.
    void logAndPrint(char const* format, ...) __attribute__((format(printf, 2, 3)));
    /// As logAndPrint.
    void debug(char const* format, ...) __attribute__((format(printf, 2, 3)));
    /// To the verbose log, if verbose.
    void logVerbose(char const* format, ...) __attribute__((format(printf, 2, 3)));
    /// A line of 70 hyphens to the verbose log.
    void logRuler();
    /// To the discovery document.
    void PrintXML(char const* format, ...) __attribute__((format(printf, 2, 3)));

    /// Asks whether to flash; mode 1 prompts "(yes/no) ". An empty line means no. Returns whatever was
    /// answered but AnsHelp and AnsShow, so AnsAll and AnsQuit come back too. Throws std::runtime_error
    /// "console input failure" at the end of input and on a line of 250 characters or more.
    Answer askFlashIt(int mode);
    /// The same for a group of `count` devices. The answer is remembered under the trimmed group name and
    /// given again, with the prompt, for every later question about that group; without a name each is asked.
    Answer askFlashIt(std::string const& group, int count);

  protected:
    /// One line in lower case; an empty one gives the default, or is asked again if that is empty.
    std::string getLine(std::string const& prompt, std::string const& defaultAnswer);
    /// Asks until the line is the beginning of exactly one word of QA_Map.
    Answer getAnswer(std::string const& prompt, std::string const& defaultAnswer);
    Answer getUserAnswer(std::string const& prompt, std::string const& defaultAnswer);
    /// The remembered answer, or AnsEmpty.
    Answer getGroupAnswer(std::string const& prompt, std::string const& group);
    /// `text` isn't longer than `word` and equals its beginning.
    static bool isPrefix(std::string const& word, std::string const& text);

  private:
    void logToFile(char const* format, va_list args) __attribute__((format(printf, 2, 0)));
    void logVerboseToFile(char const* format, va_list args) __attribute__((format(printf, 2, 0)));
    void logToXMLFile(char const* format, va_list args) __attribute__((format(printf, 2, 0)));
    void print(char const* format, va_list args) __attribute__((format(printf, 2, 0)));
    void vlogAndPrint(char const* format, va_list args) __attribute__((format(printf, 2, 0)));

    bool m_Silent = false;
    bool m_Verbose = false;
    std::string m_LogFileName;
    std::string m_xmlFileName;
    std::map<std::string, Answer> GroupAnswer;
    std::string m_VerboseLogPath;
};

/// The one console of the process.
extern CLI cli;
