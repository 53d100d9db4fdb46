// Reads a large feature file, beside the Ruby parser of the language's own project (package
// ruby-gherkin), and looks steps up among many definitions, beside trying each with std::regex.
//
//   gherkin_bench [MEGABYTES [ROUNDS]]

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include "platform/gherkin/expressions/stepdefinitions.h"
#include "platform/gherkin/parser.h"

namespace Tamrix::Gherkin {
namespace {

constexpr char rubyParser[] =
    "require 'gherkin/parser'\n"
    "source = File.read(ARGV[0], encoding: 'UTF-8')\n"
    "start = Process.clock_gettime(Process::CLOCK_MONOTONIC)\n"
    "document = Gherkin::Parser.new.parse(source)\n"
    "time = Process.clock_gettime(Process::CLOCK_MONOTONIC) - start\n"
    "steps = document[:feature][:children].sum { |child| child[:steps].length }\n"
    "puts \"#{time * 1000} #{steps}\"\n";

double milliseconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - since)
        .count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

[[noreturn]] void fail(const std::string& message) {
    std::fprintf(stderr, "%s\n", message.c_str());
    std::exit(1);
}

/// A scenario with tags, a description, steps with tables and doc strings; every fifth is an
/// outline.
std::string scenario(int number) {
    const std::string id = std::to_string(number);
    const bool isOutline = number % 5 == 0;
    std::string text = "\n  # The next one.\n  @area" + std::to_string(number % 40) + " @slow\n";
    text += isOutline ? "  Scenario Outline: orders" : "  Scenario: order";
    text += " number " + id + " is paid and sent\n    What the customer gets.\n\n";
    for (int step = 0; step < 10; ++step) {
        const std::string index = std::to_string(step);
        text += step == 0 ? "    Given " : step < 6 ? "    And " : "    Then ";
        text += "the customer of order " + id + " orders " + index + " pieces of \"thing " + index +
                "\" for about 1" + index + ".50\n";
        if (step == 3 && number % 3 > 0)
            text +=
                "      | name    | count | price |\n      | thing a | 1     | 10.50 |\n"
                "      | thing b | 2     | 20.50 |\n";
        if (step == 7 && number % 4 == 0)
            text += "      \"\"\"\n      Dear customer,\n      thank you.\n      \"\"\"\n";
    }
    if (isOutline)
        text +=
            "\n    Examples:\n      | count | what |\n      | 1     | pie  |\n      | 2     | tea  "
            "|\n";
    return text;
}

struct Source {
    std::string text = "Feature: orders\n  As a customer I order.\n";
    int steps = 0;
};

Source makeSource(std::size_t size) {
    Source source;
    for (int number = 0; source.text.size() < size; ++number) {
        source.text += scenario(number);
        source.steps += 10;
    }
    return source;
}

int stepCount(const ParseResult& result) {
    if (!result.errors.empty())
        fail(result.errors[0].message);
    int count = 0;
    for (const Syntax::Scenario& each : result.document.feature()->scenarios)
        count += static_cast<int>(each.steps.size());
    return count;
}

/// A value of /proc/self/status in bytes.
double memory(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name + ":"))
            return std::strtod(line.c_str() + name.size() + 1, nullptr) * 1024;
    fail("/proc/self/status has no " + name);
}

/// What reading takes besides nothing, the file's text included, at its peak and in the end. In a
/// process of its own, whose memory nobody has used before.
void printMemory(const std::filesystem::path& path, double size) {
    std::fflush(stdout);
    const pid_t child = ::fork();
    if (child < 0)
        fail("fork() failed");
    if (child == 0) {
        const double before = memory("VmRSS");
        std::string text(static_cast<std::size_t>(size), '\0');
        std::ifstream(path, std::ios::binary).read(text.data(), static_cast<std::streamsize>(size));
        const ParseResult result = parse(std::move(text));
        stepCount(result);
        std::printf("memory: %.1f times the file at the peak, %.1f in the end\n",
                    (memory("VmHWM") - before) / size, (memory("VmRSS") - before) / size);
        std::fflush(stdout);
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (status != 0)
        fail("the memory could not be measured");
}

/// Milliseconds; nothing when the parser isn't installed.
double timeOfRuby(const std::filesystem::path& script, const std::filesystem::path& path,
                  int steps) {
    const std::string command = "ruby " + script.string() + " " + path.string() + " 2>/dev/null";
    FILE* const pipe = ::popen(command.c_str(), "r");
    double time = 0;
    int count = 0;
    const bool isRead = pipe && std::fscanf(pipe, "%lf %d", &time, &count) == 2;
    if (pipe)
        ::pclose(pipe);
    if (isRead && count != steps)
        fail("the Ruby parser found another number of steps");
    return isRead ? time : 0;
}

void benchParser(int megabytes, int rounds, const std::filesystem::path& folder) {
    const Source source = makeSource(static_cast<std::size_t>(megabytes) * 1'000'000);
    const auto size = static_cast<double>(source.text.size());
    const std::filesystem::path path = folder / "large.feature";
    const std::filesystem::path script = folder / "parse.rb";
    std::ofstream(path, std::ios::binary) << source.text;
    std::ofstream(script) << rubyParser;
    printMemory(path, size);

    std::vector<double> ours;
    std::vector<double> ruby;
    for (int round = 0; round < rounds; ++round) {
        std::string text = source.text;
        const auto start = std::chrono::steady_clock::now();
        const ParseResult result = parse(std::move(text));
        ours.push_back(milliseconds(start));
        if (stepCount(result) != source.steps)
            fail("steps are missing");
        if (const double time = timeOfRuby(script, path, source.steps))
            ruby.push_back(time);
    }
    std::printf("parsing %.1f MB with %d steps, medians of %d rounds: %.0f ms, %.0f MB/s\n",
                size / 1e6, source.steps, rounds, median(ours), size / 1e3 / median(ours));
    if (ruby.empty())
        std::printf("ruby-gherkin is not installed\n");
    else
        std::printf("Ruby's parser: %.0f ms, %.0f times as long\n", median(ruby),
                    median(ruby) / median(ours));
}

struct Definition {
    std::string expression;
    bool isRegular;
    /// The same for std::regex.
    std::string pattern;
    /// A step that it matches.
    std::string step;
};

/// Most definitions begin with words of their own, many with the same words, some with a parameter.
std::vector<Definition> makeDefinitions(int count) {
    std::vector<Definition> definitions;
    for (int i = 0; i < count; ++i) {
        const std::string id = std::to_string(i);
        switch (i % 10) {
            case 0:
                definitions.push_back({"{word} opens page {int} of chapter " + id, false,
                                       "^(\\S+) opens page (-?\\d+) of chapter " + id + "$",
                                       "anna opens page 12 of chapter " + id});
                break;
            case 1:
                definitions.push_back({"^the total of list " + id + R"( is (\d+\.\d\d)$)", true,
                                       "^the total of list " + id + R"( is (\d+\.\d\d)$)",
                                       "the total of list " + id + " is 12.50"});
                break;
            case 2:
            case 3:
                definitions.push_back(
                    {"the user clicks/presses {string} in view " + id, false,
                     "^the user (?:clicks|presses) \"([^\"]*)\" in view " + id + "$",
                     "the user presses \"OK\" in view " + id});
                break;
            default:
                definitions.push_back(
                    {"dialog " + id + " shows {int} item(s) for {float} euros", false,
                     "^dialog " + id + " shows (-?\\d+) item(?:s)? for ([-+]?[.\\d]+) euros$",
                     "dialog " + id + " shows 3 items for 10.50 euros"});
        }
    }
    return definitions;
}

void benchLookUp(int definitionCount, int stepTotal, int rounds) {
    const std::vector<Definition> list = makeDefinitions(definitionCount);
    StepDefinitions definitions;
    std::vector<std::regex> regexes;
    for (const Definition& each : list) {
        if (each.isRegular)
            definitions.addRegularExpression(each.expression, {});
        else
            definitions.addExpression(each.expression, {});
        regexes.emplace_back(each.pattern);
    }
    const auto stepAt = [&](int i) -> const std::string& {
        return list[static_cast<std::size_t>(i) * 7 % list.size()].step;
    };
    std::vector<double> ours;
    std::vector<double> plain;
    const int plainTotal = std::min(stepTotal, 200);
    for (int round = 0; round < rounds; ++round) {
        auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < stepTotal; ++i)
            if (definitions.find(stepAt(i)).size() != 1)
                fail("a step was not found: " + stepAt(i));
        ours.push_back(milliseconds(start) * 1000 / stepTotal);
        start = std::chrono::steady_clock::now();
        for (int i = 0; i < plainTotal; ++i)
            if (std::count_if(regexes.begin(), regexes.end(), [&](const std::regex& each) {
                    return std::regex_search(stepAt(i), each);
                }) != 1)
                fail("std::regex does not find: " + stepAt(i));
        plain.push_back(milliseconds(start) * 1000 / plainTotal);
    }
    std::printf(
        "%d steps among %d definitions: %.1f microseconds a step; each tried with std::regex: "
        "%.0f, %.0f times as long\n",
        stepTotal, definitionCount, median(ours), median(plain), median(plain) / median(ours));
}

int run(int megabytes, int rounds) {
    std::string name = (std::filesystem::temp_directory_path() / "gherkin-XXXXXX").string();
    if (!::mkdtemp(name.data()))
        fail("no folder for temporary files");
    benchParser(megabytes, rounds, name);
    std::filesystem::remove_all(name);
    benchLookUp(1'000, 10'000, rounds);
    return 0;
}

}  // namespace
}  // namespace Tamrix::Gherkin

int main(int count, char** arguments) {
    const int megabytes = count > 1 ? std::atoi(arguments[1]) : 10;
    const int rounds = count > 2 ? std::atoi(arguments[2]) : 5;
    if (megabytes < 1 || megabytes > 60 || rounds < 1) {
        std::fprintf(stderr, "usage: gherkin_bench [MEGABYTES [ROUNDS]]\n");
        return 2;
    }
    return Tamrix::Gherkin::run(megabytes, rounds);
}
