#include "support/Aims.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace ovBenchmarks {

namespace {

// Names of counters: an aim travels from the benchmark to the reporter as a pair of them.
constexpr const char* RATIO = "ratio";
constexpr const char* RATIO_AIM = "ratio_aim";
constexpr const char* MILLISECONDS = "aimed_ms";
constexpr const char* MILLISECONDS_AIM = "aimed_ms_aim";
constexpr const char* MEGABYTES = "aimed_mb";
constexpr const char* MEGABYTES_AIM = "aimed_mb_aim";
constexpr const char* PERCENT_AIM = "_percent_aim"; // after the name of the figure

struct Row {
    std::string figure;
    std::string value;
    std::string aim;
    std::string verdict;
};

std::string textOf(double value, const char* unit) {
    char text[64];
    std::snprintf(text, sizeof(text), value < 10.0 ? "%.2f%s" : "%.1f%s", value, unit);
    return text;
}

Row rowOf(const std::string& figure, double value, double aim, const char* unit) {
    return {figure, textOf(value, unit), "at most " + textOf(aim, unit), value <= aim ? "held" : "MISSED"};
}

/// Shows results on the console as usual, and keeps the aims among them.
class AimReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            _addRows(run);
    }

    const std::vector<Row>& getRows() const { return _rows; }

private:
    void _addRows(const Run& run) {
        const std::string& figure = run.run_name.function_name;
        const std::string full = run.run_name.args.empty() ? figure : figure + "/" + run.run_name.args;
        if (run.error_occurred) {
            _rows.push_back({full, "-", "-", "FAILED: " + run.error_message});
            return;
        }
        _addRow(run, full, RATIO, RATIO_AIM, "");
        _addRow(run, full, MILLISECONDS, MILLISECONDS_AIM, " ms");
        _addRow(run, full, MEGABYTES, MEGABYTES_AIM, " MB");
        for (const auto& [name, aim] : run.counters) {
            if (!name.ends_with(PERCENT_AIM))
                continue;
            const std::string what = name.substr(0, name.size() - std::strlen(PERCENT_AIM));
            _addRow(run, full + " " + what, what.c_str(), name.c_str(), " %");
        }
    }

    void _addRow(const Run& run, const std::string& figure, const char* name, const char* aimName,
                 const char* unit) {
        const auto value = run.counters.find(name);
        const auto aim = run.counters.find(aimName);
        if (aim != run.counters.end() && value != run.counters.end())
            _rows.push_back(rowOf(figure, value->second, aim->second, unit));
    }

    std::vector<Row> _rows;
};

void write(const std::vector<Row>& rows) {
    const char* path = std::getenv("OV_BENCH_TABLE");
    FILE* file = path ? std::fopen(path, "a") : stdout;
    if (!file) {
        std::fprintf(stderr, "the table %s cannot be written\n", path);
        std::exit(1);
    }
    for (const Row& row : rows)
        std::fprintf(file, "%s\t%s\t%s\t%s\n", row.figure.c_str(), row.value.c_str(), row.aim.c_str(),
                     row.verdict.c_str());
    if (file != stdout)
        std::fclose(file);
}

} // namespace

void aimAtRatio(benchmark::State& state, double atMost) {
    state.counters[RATIO_AIM] = atMost;
}

void aimAtMilliseconds(benchmark::State& state, double milliseconds, double atMost) {
    state.counters[MILLISECONDS] = milliseconds;
    state.counters[MILLISECONDS_AIM] = atMost;
}

void aimAtPercent(benchmark::State& state, const char* what, double percent, double atMost) {
    state.counters[what] = percent;
    state.counters[std::string(what) + PERCENT_AIM] = atMost;
}

void aimAtMegabytes(benchmark::State& state, double megabytes, double atMost) {
    state.counters[MEGABYTES] = megabytes;
    state.counters[MEGABYTES_AIM] = atMost;
}

int runBenchmarks(int& argumentCount, char** arguments) {
    benchmark::Initialize(&argumentCount, arguments);
    if (benchmark::ReportUnrecognizedArguments(argumentCount, arguments))
        return 1;
    AimReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    write(reporter.getRows());
    for (const Row& row : reporter.getRows())
        if (row.verdict != "held")
            return 1;
    return 0;
}

} // namespace ovBenchmarks
