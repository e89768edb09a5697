#pragma once
// Google Benchmark reporter that prints one CSV row per benchmark, in the format that the peer
// benchmarks print, so that both land in one table:
//     workload,tool,threads,median_ms,min_ms,max_ms,result
// A benchmark is named "workload|tool|threads" and runs one call per iteration with
// ->Iterations(1)->Repetitions(N); its label is the result column.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

class XBenchCsvReporter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context &) override
    {
        std::printf("workload,tool,threads,median_ms,min_ms,max_ms,result\n");
        return true;
    }

    void ReportRuns(const std::vector<Run> & aRuns) override
    {
        for (const Run & run : aRuns)
        {
            if (run.run_type != Run::RT_Iteration || run.iterations == 0)
                continue;
            std::string name = run.run_name.function_name;
            Entry & entry = itsEntries[name];
            if (entry.itsTimes.empty())
                itsOrder.push_back(name);
            double seconds = run.real_accumulated_time / double(run.iterations);
            entry.itsTimes.push_back(seconds * 1e3);
            entry.itsResult = run.report_label;
        }
    }

    void Finalize() override
    {
        for (const std::string & name : itsOrder)
        {
            Entry & entry = itsEntries[name];
            std::vector<double> & t = entry.itsTimes;
            std::sort(t.begin(), t.end());
            std::size_t n = t.size();
            double median = n % 2 != 0 ? t[n / 2] : 0.5 * (t[n / 2 - 1] + t[n / 2]);
            std::string workload = name, tool = "brindle", threads = "1";
            std::size_t bar = name.find('|');
            if (bar != std::string::npos)
            {
                workload = name.substr(0, bar);
                std::string rest = name.substr(bar + 1);
                std::size_t bar2 = rest.find('|');
                tool = rest.substr(0, bar2);
                if (bar2 != std::string::npos)
                    threads = rest.substr(bar2 + 1);
            }
            std::printf("%s,%s,%s,%.6f,%.6f,%.6f,%s\n", workload.c_str(), tool.c_str(),
                        threads.c_str(), median, t.front(), t.back(), entry.itsResult.c_str());
        }
        std::fflush(stdout);
    }

private:
    struct Entry
    {
        std::vector<double> itsTimes;
        std::string itsResult;
    };
    std::map<std::string, Entry> itsEntries;
    std::vector<std::string> itsOrder;
};

// main() of a benchmark program that reports through XBenchCsvReporter.
#define BRINDLE_BENCH_MAIN()                                                                       \
    int main(int argc, char ** argv)                                                               \
    {                                                                                              \
        benchmark::Initialize(&argc, argv);                                                        \
        XBenchCsvReporter reporter;                                                                \
        benchmark::RunSpecifiedBenchmarks(&reporter);                                              \
        benchmark::Shutdown();                                                                     \
        return 0;                                                                                  \
    }
