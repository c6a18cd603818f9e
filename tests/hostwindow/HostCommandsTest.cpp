#include "host/window/HostCommands.h"

#include "host/window/resource.h"

#include <gtest/gtest.h>

namespace
{
constexpr HostState Ready{.hasPlugin = true, .isAuthorized = true, .pictures = 3, .selected = 1, .waiting = 2};

HostState With(HostState state, auto change)
{
    change(state);
    return state;
}

// A letter for each thing that can be done: add, remove, publish, authorize (z) instead, cancel (C: at once),
// configure (s).
std::string Possible(const HostState &state)
{
    const HostCommands commands = CommandsIn(state);
    std::string letters;
    letters += commands.canAdd ? "a" : "";
    letters += commands.canRemove ? "r" : "";
    letters += commands.canPublish ? "p" : "";
    letters += commands.mustAuthorize ? "z" : "";
    letters += !commands.canCancel ? "" : commands.isCancelAbrupt ? "C" : "c";
    letters += commands.canConfigure ? "s" : "";
    return letters;
}
} // namespace

TEST(HostCommands, FollowWhatThereIs)
{
    const struct
    {
        const char *what;
        HostState state;
        const char *possible;
        unsigned hint;
    } cases[] = {
        {"ready", Ready, "arps", IDS_MANY_READY},
        {"one left", With(Ready, [](HostState &s) { s.waiting = 1; }), "arps", IDS_ONE_READY},
        {"all up", With(Ready, [](HostState &s) { s.waiting = 0; }), "arps", IDS_ALL_UP},
        {"nothing selected", With(Ready, [](HostState &s) { s.selected = 0; }), "aps", IDS_MANY_READY},
        {"empty", With(Ready, [](HostState &s) { s.pictures = s.selected = s.waiting = 0; }), "as",
         IDS_NO_PICTURES},
        {"no account", With(Ready, [](HostState &s) { s.isAuthorized = false; }), "arzs", IDS_NO_ACCOUNT},
        {"no plug-in", With(Ready, [](HostState &s) { s.hasPlugin = s.isAuthorized = false; }), "ar",
         IDS_NO_PLUGIN},
    };
    for (const auto &one : cases)
    {
        EXPECT_EQ(Possible(one.state), one.possible) << one.what;
        EXPECT_EQ(HintIn(one.state), one.hint) << one.what;
    }
}

TEST(HostCommands, InARunOnlyItsEndCanBeAskedFor)
{
    HostState state = Ready;
    state.phase = RunPhase::Running;
    EXPECT_EQ(Possible(state), "c");
    state.phase = AfterCancel(state.phase);
    EXPECT_EQ(Possible(state), "C");
    state.phase = AfterCancel(state.phase);
    EXPECT_EQ(Possible(state), "");
    EXPECT_EQ(AfterCancel(state.phase), RunPhase::Stopping);
    EXPECT_EQ(AfterCancel(RunPhase::Idle), RunPhase::Idle);
}
