#include "measurement/ExpTable.h"
#include "measurement/RandomTools.h"
#include "measurement/TimeLeft.h"
#include "shell/DebugLog.h"
#include "shell/LogBox.h"
#include "support/FakeMachine.h"

#include <gtest/gtest.h>

#include <set>

namespace tvx {
namespace {

TEST(TimeLeftTest, HoursToTheTarget)
{
    const Currency reached = ExpTable(120);
    EXPECT_EQ(timeLeftLine(120, reached, 121, 500), "\r\n  Lv121まで、あと 29,716 Kexp、59.43時間です\r\n");
    // At or below what is reached; a rate of 0 counts as 0.1 k/h.
    EXPECT_EQ(timeLeftLine(120, reached + Currency::fromInt(2000), 120, 0),
              "\r\n  Lv120まで、かつて -2 Kexp、-20.00時間です\r\n");
}

TEST(TimeLeftTest, AsksTargetAndRateAndStopsOnCancel)
{
    test::FakeMachine machine;
    DebugLog log({}, machine.clock);
    LogBox box;
    machine.numbers = {121, 500};
    menuTimeLeft_Click(120, ExpTable(120), Currency::fromInt(42), machine, box, log);
    ASSERT_EQ(machine.count("ask あと何時間？"), 2u);
    EXPECT_EQ(machine.events[0], "ask あと何時間？ | 目標Lvを入力してください  (現在:120) | 1 200 121.000000 1");
    EXPECT_EQ(machine.events[1], "ask あと何時間？ | 時給Exp(k)を入力してください | 0.1 100000 42.000000 500");
    EXPECT_NE(box.text().find("59.43時間です"), std::string::npos);

    box.clear();
    menuTimeLeft_Click(120, ExpTable(120), Currency{}, machine, box, log); // cancelled
    menuTimeLeft_Click(199, ExpTable(199), Currency{}, machine, box, log);
    EXPECT_EQ(box.text(), "\r\nLv200到達まであとひとつ。がんばって！\r\n");
}

TEST(RandomToolsTest, RangesAndSequences)
{
    Rnd rnd(7);
    std::set<int> seen;
    for (int i = 0; i < 200; ++i)
        seen.insert(RandomInt(rnd, 2, 1));
    EXPECT_EQ(seen, (std::set<int>{1, 2}));

    const std::string text = RandomSequence(rnd, 128, 1, 10, 4);
    EXPECT_TRUE(text.starts_with("  1 ～ 128 の範囲の乱数列は以下のとおりです\r\n    ")) << text;
    std::multiset<int> numbers;
    int lines = 0;
    std::size_t start = text.find("\r\n") + 2;
    for (std::size_t end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2, ++lines) {
        const std::string line = text.substr(start, end - start);
        ASSERT_LE(line.size(), 4u + 50u) << line;
        for (std::size_t at = 4; at < line.size(); at += 5)
            numbers.insert(std::stoi(line.substr(at, 5)));
    }
    EXPECT_EQ(lines, 13);
    std::multiset<int> all;
    for (int n = 1; n <= 128; ++n)
        all.insert(n);
    EXPECT_EQ(numbers, all);
}

TEST(LogBoxTest, KeepsTheNewest512Lines)
{
    LogBox box;
    for (int line = 1; line <= 520; ++line)
        box.write("line " + std::to_string(line) + "\r\n");
    EXPECT_TRUE(box.text().starts_with("line 9\r\n"));
    EXPECT_EQ(std::count(box.text().begin(), box.text().end(), '\n'), 512);
    EXPECT_EQ(box.caret(), box.text().size());
    box.write("a\r\nb\r\n", false);
    EXPECT_TRUE(box.text().starts_with("line 11\r\n"));
    EXPECT_EQ(box.text().substr(box.caret()), "a\r\nb\r\n");
}

} // namespace
} // namespace tvx
