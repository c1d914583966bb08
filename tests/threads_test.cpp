// Descriptions in many threads at a time. A program of its own, for the thread sanitizer.

#include <bscan/description.h>

#include "support/oracle.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace bscan::test {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 10;

/// Does a piece of work in all threads at the same time: none begins a round before all are there.
/// They wait in a way that tells the sanitizer of no order between them.
template <typename Work>
void InThreads(Work work) {
    std::atomic<int> arrived = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 1; round <= kRounds; ++round) {
                arrived.fetch_add(1, std::memory_order_relaxed);
                while (arrived.load(std::memory_order_relaxed) < round * kThreads) {
                    std::this_thread::yield();
                }
                work(i);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

std::string FilledModel(const Description& description) {
    BScanParser parser;
    if (description.Fill(parser) != kOk) return "not filled";
    const std::string fault = FindDriveFault(parser);
    return fault.empty() ? DumpModel(parser) : fault;
}

std::vector<std::string> Texts() {
    std::vector<std::string> texts = {SmallDevice(), "no entity", ""};
    for (const auto& file : FilesIn(SourceDir() / "examples" / "devices")) {
        texts.push_back(Contents(file));
        texts.push_back(texts.back().substr(0, texts.back().size() / 2));
    }
    return texts;
}

TEST(Threads, ReadDifferentTexts) {
    const std::vector<std::string> texts = Texts();
    std::vector<std::string> models;
    for (const std::string& text : texts) {
        models.push_back(FilledModel(Description::Parse(text, nullptr)));
    }
    InThreads([&](int thread) {
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const std::size_t at = (i + static_cast<std::size_t>(thread)) % texts.size();
            EXPECT_EQ(FilledModel(Description::Parse(texts[at], "some.bsd")), models[at]);
        }
    });
}

TEST(Threads, ShareADescription) {
    for (const std::string& text : Texts()) {
        const Description description = Description::Parse(text, "shared.bsd");
        const std::string model = FilledModel(description);
        InThreads([&](int /*thread*/) {
            EXPECT_EQ(FilledModel(description), model);
            for (const Finding& finding : description.Findings()) {
                EXPECT_NE(DescribeRule(finding.rule), nullptr);
                description.Line(finding.line);
            }
            EXPECT_EQ(description.GetFacts().FindPort("none"), nullptr);
        });
    }
}

}  // namespace
}  // namespace bscan::test
