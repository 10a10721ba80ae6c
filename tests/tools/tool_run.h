// Runs the qmxml tool as a user would, through the shell, and keeps what it printed.
#pragma once

#include <stdio.h>
#include <sys/wait.h>

#include <array>
#include <string>

namespace qmxml_test {

struct ToolRun {
    int status;       // the exit status, -1 when the tool did not exit normally
    std::string out;  // standard output, with standard error folded in unless asked otherwise
};

// `arguments` is shell text (quote paths; redirections such as "< file" work).
inline ToolRun RunTool(const std::string& arguments, bool foldErrors = true) {
    const std::string command =
        std::string("'") + QMXML_TOOL + "' " + arguments + (foldErrors ? " 2>&1" : " 2>/dev/null");
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return {-1, "popen failed"};
    ToolRun run{0, {}};
    std::array<char, 4096> buffer;
    std::size_t got;
    while ((got = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) run.out.append(buffer.data(), got);
    const int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

// A path as shell text.
inline std::string Quoted(const std::string& path) { return "'" + path + "'"; }

}  // namespace qmxml_test
