// Runs the W3C XML Schema test suite (Microsoft and Boeing sets) against the
// schema loader and the dynamic classes, and prints the agreement per area.
//
//   w3c_schema_runner SUITE_DIR [--list N] [--results FILE] [--report FILE]
//                     [--timeout SECONDS] [--xmllint PROGRAM|none] [--work DIR]
//                     [--schemas-only]
//
// Schema tests: an expected-valid schema must load, an expected-invalid one
// must be refused. Instance tests: the group's schema is loaded once and its
// classes made once; the instance read with a default context is accepted
// (valid) or refused (invalid). An accepted valid instance is written back
// (with xsi:type) and must (a) still pass xmllint against the schema when
// xmllint passes the original, and (b) carry the same infoset as the
// original (infoset_compare.h).
//
// The tests run in a child process that reports each test before and after
// running it, so a crash or a hang (no word for --timeout seconds, 60 by
// default) is pinned on its file and the run goes on in a new child.
//
// --report FILE writes the disagreements grouped by cause, with a count and
// examples (--list N of them, 1 by default); --results FILE one line per test
// run: area, group, test, kind, expected, agrees (yes/no). Copies of the
// written instances go to --work DIR (a fresh temporary folder by default,
// removed at the end).
// Exit status: 0 when it ran, 2 on a usage error or an unreadable suite.
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "qmxml/core/exception.h"
#include "w3c_instances.h"
#include "w3c_suite.h"

namespace {

using qmxml_w3c::TestCase;

struct Options {
    std::string suite;
    int list = 1;
    std::string results;
    std::string report;
    int timeout = 60;
    std::string xmllint = "xmllint";
    std::string work;
    bool schemasOnly = false;
};

// What became of one test, as the child reported it (or the parent saw).
struct Result {
    enum class State { NotRun, Loaded, Refused, SchemaNotLoaded, ClassesNotCreated, Accepted, Rejected, Crashed, TimedOut };
    State state = State::NotRun;
    std::string message;     // the failure, or the crash
    std::string difference;  // accepted: the infoset comparison's verdict
    bool identity = false;   // the group's schema declares identity constraints
    std::string copy;        // accepted valid instances: the written copy's file
    int lintOriginal = -1;   // xmllint on the original: 1 validates, 0 not, -1 not asked
    int lintCopy = -1;
    std::string lintMessage;  // xmllint's first complaint about the copy
};

// ---------------------------------------------------------------- the child

std::string OneLine(std::string s) {
    for (char& c : s)
        if (c == '\t' || c == '\n' || c == '\r') c = ' ';
    return s;
}

void Send(int fd, const std::string& line) {
    std::size_t done = 0;
    while (done < line.size()) {
        const ssize_t n = write(fd, line.data() + done, line.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) _exit(3);
        done += static_cast<std::size_t>(n);
    }
}

// Runs order[from..] and reports "S pos" before and "R pos state identity
// message difference copy" after each test.
void RunChild(const std::vector<TestCase>& tests, const std::vector<std::size_t>& order, std::size_t from, int fd,
              const Options& options) {
    qmxml_w3c::GroupCache cache;
    for (std::size_t pos = from; pos < order.size(); ++pos) {
        const std::size_t index = order[pos];
        const TestCase& t = tests[index];
        Send(fd, "S\t" + std::to_string(pos) + "\n");
        char state = '?';
        std::string message, difference, copy;
        bool identity = false;
        if (t.kind == TestCase::Kind::Schema) {
            const qmxml_w3c::GroupSchema& group = cache.Schema(t);
            state = group.loadFailure.empty() ? 'L' : 'F';
            message = group.loadFailure;
            identity = group.identityConstraints;
        } else {
            const qmxml_w3c::InstanceOutcome out = qmxml_w3c::RunInstance(t, cache);
            identity = out.identityConstraints;
            message = out.message;
            switch (out.kind) {
            case qmxml_w3c::InstanceOutcome::Kind::SchemaNotLoaded: state = 'N'; break;
            case qmxml_w3c::InstanceOutcome::Kind::ClassesNotCreated: state = 'C'; break;
            case qmxml_w3c::InstanceOutcome::Kind::Rejected: state = 'J'; break;
            case qmxml_w3c::InstanceOutcome::Kind::Accepted: state = 'A'; break;
            }
            if (out.kind == qmxml_w3c::InstanceOutcome::Kind::Accepted) {
                difference = out.difference;
                if (t.expectedValid && !out.copy.empty()) {
                    copy = options.work + "/" + std::to_string(index) + ".xml";
                    std::ofstream(copy, std::ios::binary) << out.copy;
                }
            }
        }
        Send(fd, "R\t" + std::to_string(pos) + "\t" + state + "\t" + (identity ? "1" : "0") + "\t" + OneLine(message) +
                     "\t" + OneLine(difference) + "\t" + copy + "\n");
    }
}

std::vector<std::string> SplitTabs(const std::string& line) {
    std::vector<std::string> fields;
    std::size_t start = 0;
    while (true) {
        const std::size_t tab = line.find('\t', start);
        fields.push_back(line.substr(start, tab == std::string::npos ? std::string::npos : tab - start));
        if (tab == std::string::npos) return fields;
        start = tab + 1;
    }
}

Result::State StateOf(char c) {
    switch (c) {
    case 'L': return Result::State::Loaded;
    case 'F': return Result::State::Refused;
    case 'N': return Result::State::SchemaNotLoaded;
    case 'C': return Result::State::ClassesNotCreated;
    case 'A': return Result::State::Accepted;
    default: return Result::State::Rejected;
    }
}

// Runs every test of order in children, restarting after a crash or hang.
void RunAll(const std::vector<TestCase>& tests, const std::vector<std::size_t>& order, std::vector<Result>& results,
            const Options& options) {
    std::size_t next = 0;
    while (next < order.size()) {
        int fds[2];
        if (pipe(fds) != 0) {
            std::perror("pipe");
            std::exit(2);
        }
        std::fflush(nullptr);
        const std::size_t first = next;
        const pid_t pid = fork();
        if (pid < 0) {
            std::perror("fork");
            std::exit(2);
        }
        if (pid == 0) {
            close(fds[0]);
            RunChild(tests, order, next, fds[1], options);
            close(fds[1]);
            _exit(0);
        }
        close(fds[1]);
        std::string buffer;
        long running = -1;  // the position the child is on, -1 between tests
        bool hung = false;
        while (true) {
            pollfd p{fds[0], POLLIN, 0};
            const int ready = poll(&p, 1, options.timeout * 1000);
            if (ready < 0 && errno == EINTR) continue;
            if (ready == 0) {
                hung = true;
                kill(pid, SIGKILL);
                break;
            }
            char chunk[65536];
            const ssize_t n = read(fds[0], chunk, sizeof chunk);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) break;
            buffer.append(chunk, static_cast<std::size_t>(n));
            std::size_t newline;
            while ((newline = buffer.find('\n')) != std::string::npos) {
                const std::vector<std::string> f = SplitTabs(buffer.substr(0, newline));
                buffer.erase(0, newline + 1);
                const std::size_t pos = std::strtoul(f[1].c_str(), nullptr, 10);
                if (f[0] == "S") {
                    running = static_cast<long>(pos);
                } else if (f[0] == "R" && f.size() >= 7) {
                    Result& r = results[order[pos]];
                    r.state = StateOf(f[2][0]);
                    r.identity = f[3] == "1";
                    r.message = f[4];
                    r.difference = f[5];
                    r.copy = f[6];
                    running = -1;
                    next = pos + 1;
                }
            }
        }
        close(fds[0]);
        int status = 0;
        waitpid(pid, &status, 0);
        if (running >= 0) {
            Result& r = results[order[static_cast<std::size_t>(running)]];
            if (hung) {
                r.state = Result::State::TimedOut;
                r.message = "No answer within " + std::to_string(options.timeout) + " seconds";
            } else {
                r.state = Result::State::Crashed;
                r.message = WIFSIGNALED(status) ? std::string("Killed by signal ") + std::to_string(WTERMSIG(status)) +
                                                      " (" + strsignal(WTERMSIG(status)) + ")"
                                                : "Exited with status " + std::to_string(WEXITSTATUS(status));
            }
            const TestCase& t = tests[order[static_cast<std::size_t>(running)]];
            std::fprintf(stderr, "%s: %s/%s: %s: %s\n", r.state == Result::State::TimedOut ? "hang" : "crash",
                         t.set.c_str(), t.group.c_str(),
                         (t.kind == TestCase::Kind::Schema ? t.schemaDocuments[0] : t.instanceDocument).c_str(),
                         r.message.c_str());
            next = static_cast<std::size_t>(running) + 1;
        } else if (next == first && next < order.size()) {
            // Died between tests without finishing one: pin it on the next
            // test so that the run always moves on.
            results[order[next]].state = Result::State::Crashed;
            results[order[next]].message = "The runner's child died before the test began";
            ++next;
        }
    }
}

// ---------------------------------------------------------------- xmllint

bool ProgramFound(const std::string& program) {
    if (program == "none") return false;
    if (program.find('/') != std::string::npos) return access(program.c_str(), X_OK) == 0;
    const char* path = std::getenv("PATH");
    std::string dirs = path != nullptr ? path : "/usr/bin:/bin";
    std::size_t start = 0;
    while (start <= dirs.size()) {
        std::size_t colon = dirs.find(':', start);
        if (colon == std::string::npos) colon = dirs.size();
        const std::string candidate = dirs.substr(start, colon - start) + "/" + program;
        if (access(candidate.c_str(), X_OK) == 0) return true;
        start = colon + 1;
    }
    return false;
}

std::string Quoted(const std::string& s) {
    std::string out = "'";
    for (char c : s) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

// The one schema file xmllint validates a test's instance against: the
// group's first schema document, the instance's only hint, or a wrapper that
// imports (or, for no namespace, includes) each of its hints.
std::string LintSchemaFor(const TestCase& t, std::size_t index, const Options& options) {
    if (!t.schemaDocuments.empty()) return t.schemaDocuments[0];
    const auto hints = qmxml_w3c::SchemaHints(t.instanceDocument);
    if (hints.size() == 1) return hints[0].second;
    const std::string wrapper = options.work + "/schema-" + std::to_string(index) + ".xsd";
    std::ofstream out(wrapper);
    out << "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\">\n";
    for (const auto& hint : hints)
        if (hint.first.empty()) out << "  <xs:include schemaLocation=\"" << hint.second << "\"/>\n";
    for (const auto& hint : hints)
        if (!hint.first.empty())
            out << "  <xs:import namespace=\"" << hint.first << "\" schemaLocation=\"" << hint.second << "\"/>\n";
    out << "</xs:schema>\n";
    return wrapper;
}

// Runs xmllint once per schema over the originals and copies of its
// accepted valid instances, and files each verdict.
void RunXmllint(const std::vector<TestCase>& tests, std::vector<Result>& results, const Options& options) {
    std::map<std::string, std::vector<std::size_t>> bySchema;
    for (std::size_t i = 0; i < tests.size(); ++i)
        if (results[i].state == Result::State::Accepted && !results[i].copy.empty())
            bySchema[LintSchemaFor(tests[i], i, options)].push_back(i);
    const bool guard = ProgramFound("timeout");
    for (const auto& entry : bySchema) {
        std::string command = (guard ? "timeout 30 " : "") + Quoted(options.xmllint) + " --noout --schema " + Quoted(entry.first);
        std::map<std::string, std::pair<std::size_t, bool>> files;  // file -> test, is the copy
        for (std::size_t i : entry.second) {
            command += " " + Quoted(tests[i].instanceDocument) + " " + Quoted(results[i].copy);
            files[tests[i].instanceDocument] = {i, false};
            files[results[i].copy] = {i, true};
            results[i].lintOriginal = 0;
            results[i].lintCopy = 0;
        }
        command += " 2>&1";
        const auto started = std::chrono::steady_clock::now();
        std::FILE* pipe = popen(command.c_str(), "r");
        if (pipe == nullptr) continue;
        std::string output;
        char chunk[65536];
        std::size_t n;
        while ((n = std::fread(chunk, 1, sizeof chunk, pipe)) > 0) output.append(chunk, n);
        pclose(pipe);
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
        // xmllint's own automaton for large occurrence bounds can take
        // minutes: past the guard its verdicts count as not given.
        if (seconds > 10) std::fprintf(stderr, "xmllint took %.0f s on %s\n", seconds, entry.first.c_str());
        std::size_t start = 0;
        while (start < output.size()) {
            std::size_t end = output.find('\n', start);
            if (end == std::string::npos) end = output.size();
            const std::string line = output.substr(start, end - start);
            start = end + 1;
            for (const char* verdict : {" validates", " fails to validate"}) {
                const std::size_t len = std::strlen(verdict);
                if (line.size() > len && line.compare(line.size() - len, len, verdict) == 0) {
                    const auto found = files.find(line.substr(0, line.size() - len));
                    if (found == files.end()) continue;
                    Result& r = results[found->second.first];
                    (found->second.second ? r.lintCopy : r.lintOriginal) = verdict[1] == 'v' ? 1 : 0;
                }
            }
            // The first complaint about a copy names it at the start.
            for (const auto& f : files)
                if (f.second.second && line.rfind(f.first + ":", 0) == 0 && results[f.second.first].lintMessage.empty())
                    results[f.second.first].lintMessage = line.substr(f.first.size() + 1);
        }
    }
}

// xmllint's complaint without its line and element, quoted values as '..'.
std::string LintCause(const std::string& message) {
    const std::string marker = "validity error : ";
    const std::size_t at = message.find(marker);
    const std::string text = at == std::string::npos ? message : message.substr(at + marker.size());
    std::string out;
    bool quoted = false;
    for (char c : text) {
        if (c == '\'') {
            out += quoted ? "'" : "'..";
            quoted = !quoted;
        } else if (!quoted) {
            out += c;
        }
    }
    return qmxml_w3c::NormalisedCause(out);
}

// ---------------------------------------------------------------- the tally

struct Cell {
    int part = 0, whole = 0;
    std::string Text() const {
        char buf[64];
        if (whole == 0) return "-";
        std::snprintf(buf, sizeof buf, "%d/%d %.1f%%", part, whole, 100.0 * part / whole);
        return buf;
    }
    void Add(const Cell& o) { part += o.part, whole += o.whole; }
};

struct Tally {
    Cell schemaValid, schemaInvalid, instanceValid, roundTrip, instanceInvalid, identity;
    int excluded = 0;
    void Add(const Tally& o) {
        schemaValid.Add(o.schemaValid), schemaInvalid.Add(o.schemaInvalid), instanceValid.Add(o.instanceValid);
        roundTrip.Add(o.roundTrip), instanceInvalid.Add(o.instanceInvalid), identity.Add(o.identity);
        excluded += o.excluded;
    }
};

struct Group {
    std::vector<std::string> examples;
    int count = 0;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr,
                     "usage: %s SUITE_DIR [--list N] [--results FILE] [--report FILE] [--timeout S] "
                     "[--xmllint PROGRAM|none] [--work DIR] [--schemas-only]\n",
                     argv[0]);
        return 2;
    }
    Options options;
    options.suite = argv[1];
    for (int i = 2; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        if (arg == "--schemas-only") options.schemasOnly = true;
        else if (arg == "--list" && hasValue) options.list = std::atoi(argv[++i]);
        else if (arg == "--results" && hasValue) options.results = argv[++i];
        else if (arg == "--report" && hasValue) options.report = argv[++i];
        else if (arg == "--timeout" && hasValue) options.timeout = std::max(1, std::atoi(argv[++i]));
        else if (arg == "--xmllint" && hasValue) options.xmllint = argv[++i];
        else if (arg == "--work" && hasValue) options.work = argv[++i];
        else {
            std::fprintf(stderr, "unknown option %s\n", arg.c_str());
            return 2;
        }
    }
    std::vector<TestCase> tests;
    try {
        tests = qmxml_w3c::ReadSuite(options.suite);
    } catch (const QmXmlLib10::CQmException& e) {
        std::fprintf(stderr, "cannot read the suite: %s\n", e.GetFullMessage().c_str());
        return 2;
    }
    if (tests.empty()) {
        std::fprintf(stderr, "no test sets under %s\n", options.suite.c_str());
        return 2;
    }
    namespace fs = std::filesystem;
    bool removeWork = false;
    if (options.work.empty()) {
        char pattern[] = "/tmp/w3c_runner_XXXXXX";
        if (mkdtemp(pattern) == nullptr) {
            std::perror("mkdtemp");
            return 2;
        }
        options.work = pattern;
        removeWork = true;
    } else {
        fs::create_directories(options.work);
    }

    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < tests.size(); ++i)
        if (tests[i].applicable && (!options.schemasOnly || tests[i].kind == TestCase::Kind::Schema)) order.push_back(i);
    std::vector<Result> results(tests.size());
    RunAll(tests, order, results, options);
    const bool lint = !options.schemasOnly && ProgramFound(options.xmllint);
    if (lint) RunXmllint(tests, results, options);

    std::vector<std::string> areas;
    std::map<std::string, Tally> tally;
    std::map<std::string, Group> groups;
    std::FILE* resultsFile = options.results.empty() ? nullptr : std::fopen(options.results.c_str(), "w");
    auto disagree = [&](const std::string& cause, const std::string& example) {
        Group& g = groups[cause];
        if (static_cast<int>(g.examples.size()) < std::max(1, options.list)) g.examples.push_back(example);
        ++g.count;
    };
    for (std::size_t i = 0; i < tests.size(); ++i) {
        const TestCase& t = tests[i];
        const Result& r = results[i];
        if (tally.find(t.set) == tally.end()) areas.push_back(t.set);
        Tally& a = tally[t.set];
        if (!t.applicable) {
            ++a.excluded;
            continue;
        }
        if (r.state == Result::State::NotRun) continue;
        const bool schema = t.kind == TestCase::Kind::Schema;
        const std::string file = schema ? t.schemaDocuments[0] : t.instanceDocument;
        const std::string id = t.set + "/" + t.group + "/" + t.name + " (" + fs::path(file).filename().string() + ")";
        const std::string what = std::string(schema ? "schema" : "instance") + (t.expectedValid ? " valid" : " invalid");
        bool agrees = false;
        if (r.state == Result::State::Crashed || r.state == Result::State::TimedOut) {
            disagree(std::string(r.state == Result::State::Crashed ? "crash" : "hang") + " (" + what + "): " + r.message,
                     id + ": " + file);
        } else if (schema) {
            agrees = (r.state == Result::State::Loaded) == t.expectedValid;
            if (!agrees && t.expectedValid) disagree("valid schema refused: " + qmxml_w3c::NormalisedCause(r.message), id + ": " + r.message);
            if (!agrees && !t.expectedValid) {
                const std::string folder = fs::path(file).parent_path().filename().string();
                disagree("invalid schema loaded: " + t.set + " " + folder, id);
            }
        } else if (r.state == Result::State::SchemaNotLoaded) {
            disagree("group schema not loaded (" + what + "): " + qmxml_w3c::NormalisedCause(r.message), id + ": " + r.message);
        } else if (r.state == Result::State::ClassesNotCreated) {
            disagree("classes not created (" + what + "): " + qmxml_w3c::NormalisedCause(r.message), id + ": " + r.message);
        } else if (t.expectedValid) {
            agrees = r.state == Result::State::Accepted;
            if (!agrees) disagree("valid instance rejected: " + qmxml_w3c::NormalisedCause(r.message), id + ": " + r.message);
        } else {
            agrees = r.state == Result::State::Rejected;
            if (!agrees && r.identity) disagree("invalid instance accepted, identity constraints unchecked", id);
            else if (!agrees) disagree("invalid instance accepted: " + t.set + " " + fs::path(file).parent_path().filename().string(), id);
        }
        bool roundTrip = false;
        if (!schema && t.expectedValid && r.state == Result::State::Accepted) {
            const bool lintOk = !lint || r.lintOriginal != 1 || r.lintCopy == 1;
            roundTrip = lintOk && r.difference.empty();
            if (!r.difference.empty())
                disagree("round trip, infoset differs: " + qmxml_w3c::NormalisedCause(r.difference), id + ": " + r.difference);
            else if (!lintOk)
                disagree("round trip, xmllint refuses the copy: " + LintCause(r.lintMessage),
                         id + ": " + r.lintMessage);
        }
        if (schema) (t.expectedValid ? a.schemaValid : a.schemaInvalid).whole++;
        if (schema && agrees) (t.expectedValid ? a.schemaValid : a.schemaInvalid).part++;
        if (!schema && t.expectedValid) {
            ++a.instanceValid.whole;
            if (agrees) ++a.instanceValid.part, ++a.roundTrip.whole;
            if (roundTrip) ++a.roundTrip.part;
        }
        if (!schema && !t.expectedValid) {
            Cell& cell = r.identity ? a.identity : a.instanceInvalid;
            ++cell.whole;
            if (agrees) ++cell.part;
        }
        if (resultsFile != nullptr)
            std::fprintf(resultsFile, "%s %s %s %s %s %s\n", t.set.c_str(), t.group.c_str(), t.name.c_str(),
                         schema ? "schema" : "instance", t.expectedValid ? "valid" : "invalid",
                         agrees && (roundTrip || schema || !t.expectedValid) ? "yes" : "no");
    }
    if (resultsFile != nullptr) std::fclose(resultsFile);

    // Columns: valid schemas loaded, invalid schemas refused, valid instances
    // accepted, accepted valid instances round-tripped, invalid instances
    // rejected (identity-constraint ones apart), tests excluded as not 1.0.
    std::printf("%-19s %-16s %-16s %-16s %-16s %-16s %-16s %s\n", "area", "valid schemas", "invalid schemas",
                "valid instances", "round trips", "invalid inst.", "identity inst.", "excluded");
    auto row = [](const std::string& name, const Tally& a) {
        std::printf("%-19s %-16s %-16s %-16s %-16s %-16s %-16s %d\n", name.c_str(), a.schemaValid.Text().c_str(),
                    a.schemaInvalid.Text().c_str(), a.instanceValid.Text().c_str(), a.roundTrip.Text().c_str(),
                    a.instanceInvalid.Text().c_str(), a.identity.Text().c_str(), a.excluded);
    };
    Tally ms;
    for (const std::string& area : areas) {
        row(area, tally[area]);
        if (area != "Boeing") ms.Add(tally[area]);
    }
    row("Microsoft total", ms);
    if (!options.schemasOnly && !lint)
        std::printf("\n%s: round trips are checked by the infoset comparison alone.\n",
                    options.xmllint == "none" ? "xmllint left out (--xmllint none)"
                                              : ("xmllint (" + options.xmllint + ") not found").c_str());
    std::printf("\nvalid schemas: loaded; invalid schemas: refused; valid instances: accepted;\n"
                "round trips: accepted valid instances written back with the same infoset%s;\n"
                "invalid inst.: rejected; identity inst.: invalid instances of schemas with key,\n"
                "keyref or unique, rejected.\n",
                lint ? "\n  and passing xmllint when the original does" : "");

    std::vector<std::pair<std::string, const Group*>> sorted;
    for (const auto& g : groups) sorted.emplace_back(g.first, &g.second);
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& x, const auto& y) { return x.second->count > y.second->count; });
    std::printf("\nDisagreements by cause:\n");
    for (const auto& g : sorted) std::printf("  %5d  %s\n", g.second->count, g.first.c_str());
    if (!options.report.empty()) {
        std::ofstream report(options.report);
        for (const auto& g : sorted) {
            report << g.second->count << "  " << g.first << "\n";
            for (const std::string& e : g.second->examples) report << "        e.g. " << e << "\n";
        }
        std::printf("\nCauses with examples: %s\n", options.report.c_str());
    }
    if (removeWork) {
        std::error_code ec;
        fs::remove_all(options.work, ec);
    }
    return 0;
}
