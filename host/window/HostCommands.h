// Which commands the window offers in a given state, and the hint that it shows while it is idle.
#pragma once

#include <cstddef>

enum class RunPhase
{
    Idle,
    Running,
    Finishing, // the current upload is the last
    Stopping   // the current upload is being aborted
};

struct HostState
{
    bool hasPlugin = false;
    bool isAuthorized = false;
    size_t pictures = 0; // in the list
    size_t selected = 0;
    size_t waiting = 0; // of those, the ones not published yet
    RunPhase phase = RunPhase::Idle;
};

struct HostCommands
{
    bool canAdd = false;
    bool canRemove = false;
    bool canPublish = false;
    bool mustAuthorize = false; // first; the button for publishing does that then
    bool canCancel = false;
    bool canConfigure = false;
    bool isCancelAbrupt = false; // the next click stops at once
};

HostCommands CommandsIn(const HostState &state);

// The text of the status line, by its number in resource.h. Only while idle.
unsigned HintIn(const HostState &state);

// What a click on Cancel makes of the phase.
RunPhase AfterCancel(RunPhase phase);
