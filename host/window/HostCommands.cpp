#include "host/window/HostCommands.h"

#include "host/window/resource.h"

HostCommands CommandsIn(const HostState &state)
{
    const bool isIdle = state.phase == RunPhase::Idle;
    HostCommands commands;
    commands.canAdd = isIdle;
    commands.canRemove = isIdle && state.selected > 0;
    commands.canPublish = isIdle && state.hasPlugin && state.isAuthorized && state.pictures > 0;
    commands.mustAuthorize = isIdle && state.hasPlugin && !state.isAuthorized;
    commands.canCancel = state.phase == RunPhase::Running || state.phase == RunPhase::Finishing;
    commands.canConfigure = isIdle && state.hasPlugin;
    commands.isCancelAbrupt = state.phase == RunPhase::Finishing || state.phase == RunPhase::Stopping;
    return commands;
}

unsigned HintIn(const HostState &state)
{
    if (!state.hasPlugin)
    {
        return IDS_NO_PLUGIN;
    }
    if (!state.isAuthorized)
    {
        return IDS_NO_ACCOUNT;
    }
    if (state.pictures == 0)
    {
        return IDS_NO_PICTURES;
    }
    return state.waiting == 0 ? IDS_ALL_UP : state.waiting == 1 ? IDS_ONE_READY : IDS_MANY_READY;
}

RunPhase AfterCancel(RunPhase phase)
{
    switch (phase)
    {
    case RunPhase::Running:
        return RunPhase::Finishing;
    case RunPhase::Finishing:
        return RunPhase::Stopping;
    default:
        return phase;
    }
}
