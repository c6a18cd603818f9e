#include "host/RunRecord.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;

namespace
{
std::string Words(HRESULT code)
{
    return code == static_cast<HRESULT>(0x80070005) ? "Access is denied.\r\n" : "";
}

ItemCollection Items(size_t count)
{
    ItemCollection collection;
    for (size_t i = 0; i < count; ++i)
    {
        collection.items.push_back({"/p/" + std::to_string(i), {"jpg", "tif"}});
    }
    return collection;
}

void PublishAll(RunRecord &record, size_t count)
{
    for (size_t i = 0; i < count; ++i)
    {
        record.ItemBegins(i);
        record.NoteEntry(1, "Publishing");
    }
    record.RunEnds();
}
} // namespace

TEST(RunRecord, AWholeRunIsOneSentence)
{
    RunRecord record(Items(2));
    PublishAll(record, 2);
    const RunSummary summary = record.Summarize(false, Words);
    EXPECT_EQ(summary.text, "Published 2 pictures.\n");
    EXPECT_EQ(summary.exitCode, ExitCode::Success);
}

TEST(RunRecord, ErrorsBelongToTheItemThatIsRunning)
{
    RunRecord record(Items(3));
    record.ItemBegins(0);
    record.ItemBegins(1);
    record.NoteEntry(2, "a warning is no failure");
    record.NoteEntry(3,
                     "Could not publish \"/p/1.jpg\" (Error code: 0x80004005) HTTP Status = 504: Gateway Timeout");
    record.ItemBegins(2);
    record.RunEnds();
    const RunSummary summary = record.Summarize(false, Words);
    EXPECT_EQ(summary.text, "Published 2 of 3 pictures. 1 file was not uploaded:\n"
                            "  /p/1.jpg: HTTP Status = 504: Gateway Timeout\n");
    EXPECT_EQ(summary.exitCode, ExitCode::SomeFailed);
}

TEST(RunRecord, WhatAStopOrACancelLeftIsNamedToo)
{
    for (const bool cancelled : {false, true})
    {
        RunRecord record(Items(3));
        record.ItemBegins(0);
        record.ItemBegins(1);
        record.NoteEntry(4, "Could not publish \"/p/1.jpg\" (Error code: 0x80004005) Flickr Status = 6: Limit");
        record.RunEnds();
        const RunSummary summary = record.Summarize(cancelled, Words);
        EXPECT_THAT(summary.text, HasSubstr("/p/1.jpg: Flickr Status = 6: Limit\n"));
        EXPECT_THAT(summary.text, HasSubstr("/p/2.jpg: not tried"));
        EXPECT_EQ(summary.exitCode, cancelled ? ExitCode::Cancelled : ExitCode::SomeFailed);
    }
}

TEST(RunRecord, ACancelThatCameTooLateIsNoFailure)
{
    RunRecord record(Items(1));
    PublishAll(record, 1);
    EXPECT_EQ(record.Summarize(true, Words).exitCode, ExitCode::Success);
}

TEST(RunRecord, RefusedFilesCountAmongThoseThatDidNotGoUp)
{
    ItemCollection collection = Items(1);
    collection.refused.push_back({"/p/gone\x1b.jpg", "isn't there"});
    RunRecord record(std::move(collection));
    PublishAll(record, 1);
    const RunSummary summary = record.Summarize(false, Words);
    EXPECT_EQ(summary.text, "Published 1 of 2 pictures. 1 file was not uploaded:\n  /p/gone^[.jpg: isn't there\n");
    EXPECT_EQ(summary.exitCode, ExitCode::SomeFailed);
}

TEST(RunRecord, AFailureOfTheRunItselfIsTold)
{
    RunRecord record(Items(1));
    record.NoteEntry(4, "Could not retrieve the list of images to be published.");
    record.RunEnds();
    const RunSummary summary = record.Summarize(false, Words);
    EXPECT_THAT(summary.text, HasSubstr("Could not retrieve the list"));
    EXPECT_EQ(summary.exitCode, ExitCode::SomeFailed);
}

TEST(RunRecord, TheCodeSpeaksWhereTheServiceDidNot)
{
    const std::string start = "Could not publish \"/p/(0x80070005) x.jpg\" (Error code: ";
    EXPECT_EQ(ReasonOfEntry(start + "0x80070005) ", Words), "Access is denied. (0x80070005)");
    EXPECT_EQ(ReasonOfEntry(start + "0x80070005) (internal: invalid argument)", Words),
              "Access is denied. (0x80070005)");
    EXPECT_EQ(ReasonOfEntry(start + "0x80004001) ", Words), "error (0x80004001)");
    EXPECT_EQ(ReasonOfEntry(start + "0x80004005) why not", Words), "why not");
    EXPECT_EQ(ReasonOfEntry("no code", Words), "no code");
}
