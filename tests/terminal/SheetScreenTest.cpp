// The screen as a terminal gets it.
#include "terminal/SheetScreen.h"

#include "tests/platform/PseudoTerminal.h"

#include <gmock/gmock.h>

#include <cstdio>

namespace
{
using testing::HasSubstr;

// Shows each input, until Escape.
std::string Echo()
{
    const auto screen = OpenTerminalScreen();
    if (!screen)
    {
        return "no screen";
    }
    for (;;)
    {
        screen->Clear();
        screen->Write(screen->Columns() - 3, 1, u"wide", Look::Focus);
        screen->PlaceCursor(4, 2);
        screen->Show();
        const Input input = screen->Read();
        screen->Lend([&] { std::fprintf(stderr, "key %d\n", static_cast<int>(input.What)); });
        if (input.What == Key::Escape)
        {
            return "closed";
        }
    }
}

std::string Told(Key key)
{
    return "key " + std::to_string(static_cast<int>(key));
}
} // namespace

TEST(SheetScreen, TakesTheTerminalAndGivesItBack)
{
    TerminalRun run(Echo);
    ASSERT_TRUE(run.WaitFor("\x1B[?1049h"));
    ASSERT_TRUE(run.WaitFor("\x1B[2;78H\x1B[7mwid\x1B[0m\x1B[3;5H\x1B[?25h")) << "cut at the edge";
    EXPECT_FALSE(run.EchoesKeys());
    ASSERT_TRUE(run.Type("\t\x04"));
    ASSERT_TRUE(run.WaitFor(Told(Key::Tab)));
    run.Resize(60, 20);
    ASSERT_TRUE(run.WaitFor(Told(Key::Redraw)));
    ASSERT_TRUE(run.WaitFor("\x1B[2;58H"));
    ASSERT_TRUE(run.Type("\x03"));
    ASSERT_TRUE(run.WaitFor("\x1B[?1049l"));
    EXPECT_EQ(run.Result(), "closed");
    EXPECT_TRUE(run.EchoesKeys());
}

TEST(SheetScreen, AnEndBySignalGivesTheTerminalBack)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGABRT})
    {
        TerminalRun run(Echo);
        ASSERT_TRUE(run.WaitFor("wid"));
        EXPECT_EQ(run.EndBySignal(number), number);
        EXPECT_TRUE(run.WaitFor("\x1B[?25h\x1B[?1049l"));
        EXPECT_TRUE(run.EchoesKeys());
    }
}

TEST(SheetScreen, NeedsATerminalThatPlacesItsCursor)
{
    for (const char *terminal : {"dumb", "", "nosuchterm"})
    {
        EXPECT_EQ(TerminalRun(Echo, 80, 24, terminal).Result(), "no screen") << terminal;
    }
    EXPECT_THAT(RunWithoutTerminal(Echo), HasSubstr("no screen"));
}
