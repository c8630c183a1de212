/* Every entry point of the library file, call by call, as the *.transcript files tell. */
#include <algorithm>
#include <gtest/gtest.h>
#include <thread>

#include "Transcripts.h"

namespace {

class TranscriptTest : public testing::Test {
public:
    explicit TranscriptTest(const Transcript& tested) : transcript(tested) {}

    void TestBody() override {
        const Plugin plugin;
        EXPECT_EQ(transcript.text(), play(plugin, transcript));
    }

private:
    const Transcript& transcript;
};

bool registerTests() {
    for (const Transcript& transcript : transcripts()) {
        std::string name = transcript.title;
        std::replace_if(
            name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); },
            '_');
        testing::RegisterTest(transcript.file.c_str(), name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                              [&transcript]() -> testing::Test* { return new TranscriptTest(transcript); });
    }
    return true;
}

const bool registered = registerTests();

} // namespace

TEST(Threads, every_call_is_answered_as_if_it_were_alone) {
    constexpr std::size_t count = 8;
    const Plugin plugin;
    const std::vector<Transcript>& all = transcripts();
    std::vector<world::Lines> astray(count);
    std::vector<std::thread> hosts;
    for (std::size_t host = 0; host < count; ++host)
        hosts.emplace_back([&, host] {
            // Each begins elsewhere, so that different entry points overlap.
            for (std::size_t i = 0; i < 4 * all.size(); ++i) {
                const Transcript& transcript = all[(i + host * all.size() / count) % all.size()];
                if (play(plugin, transcript) != transcript.text())
                    astray[host].push_back(transcript.title);
            }
        });
    for (std::thread& host : hosts)
        host.join();
    for (const world::Lines& titles : astray)
        EXPECT_EQ("", join(titles));
}
