// What a publish command is to do, before the plug-in is called: the pictures that were named, those of them that the
// journal leaves out, and what the user says of those whose outcome is unknown.
#pragma once

#include "host/CommandLine.h"
#include "host/Journal.h"
#include "host/LiveDisplay.h"
#include "host/PictureItems.h"
#include "host/RunRecord.h"

#include <memory>
#include <optional>

struct PlannedRun
{
    ItemCollection pictures;
    JournalAccount account;
    std::unique_ptr<Journal> journal;
};

// The pictures of the command line and of the list that it names. Folders without --recursive, and a list that can't
// be read, are added to faults, in words.
ItemCollection CollectNamed(const CommandLine &line, std::vector<std::string> &faults, LiveDisplay &display);

// May ask the user. Throws ProfileError for a journal that can't be used.
PlannedRun PlanRun(ItemCollection pictures, const CommandLine &line, const Profile &profile,
                   const AccountData &account, LiveDisplay &display);

// With --porcelain, a line for each picture that the run doesn't touch.
void ReportLeftOut(const ItemCollection &pictures, const CommandLine &line);

// Says what a run would do.
ExitCode RunDry(const PlannedRun &plan, const CommandLine &line, LiveDisplay &display);
