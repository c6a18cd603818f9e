#include "host/RunRecord.h"

#include <gmock/gmock.h>

#include <algorithm>

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

// A run that comes to as many items as there are errors, each with that error, or with none.
void Publish(RunRecord &record, const std::vector<std::string> &errors, const std::string &name = "/p/1.jpg")
{
    for (size_t i = 0; i < errors.size(); ++i)
    {
        record.ItemBegins(i);
        record.NoteEntry(1, "Publishing");
        record.NoteEntry(2, "a warning is no failure");
        if (!errors[i].empty())
        {
            record.NoteEntry(i % 2 == 0 ? 3 : 4,
                             "Could not publish \"" + name + "\" (Error code: 0x80004005) " + errors[i]);
        }
    }
    record.RunEnds();
}
} // namespace

TEST(RunRecord, SaysWhatBecameOfTheItems)
{
    const std::string unknown =
        "Sent but not answered, the picture may or may not have arrived. It is not sent again.";
    const struct
    {
        size_t items;
        std::vector<std::string> errors;
        bool isCancelled;
        std::string text;
        ExitCode exitCode;
    } cases[] = {
        {1, {""}, true, "Published 1 picture.\n", ExitCode::Success}, // the cancel came too late
        {3,
         {"", "HTTP Status = 504: Gateway Timeout", ""},
         false,
         "Published 2 of 3 pictures. 1 file was not uploaded:\n"
         "  /p/1.jpg: HTTP Status = 504: Gateway Timeout\n"
         "Flickr is out of order or overloaded. Publish the rest later.\n",
         ExitCode::SomeFailed},
        {3,
         {unknown, ""},
         true,
         "Published 1 of 3 pictures. 1 file was not tried:\n"
         "  /p/2.jpg: not tried, the run was cancelled\n"
         "1 file may be published or not; look at Flickr before you publish it again:\n  /p/0.jpg: " +
             unknown + "\n",
         ExitCode::Cancelled},
    };
    for (const auto &one : cases)
    {
        RunRecord record(Items(one.items));
        Publish(record, one.errors);
        const RunSummary summary = record.Summarize(one.isCancelled, Words);
        EXPECT_EQ(summary.text, one.text);
        EXPECT_EQ(summary.exitCode, one.exitCode) << one.text;
        EXPECT_EQ(record.EndOf(0), one.errors[0].empty() ? ItemEnd::Published : ItemEnd::Unknown);
    }
}

TEST(RunRecord, TheCommonestErrorsSayWhatToDoOnce)
{
    const ConnectionSettings settings{"127.0.0.1:9", "all_proxy", "/etc/my.pem"};
    const std::pair<const char *, const char *> cases[] = {
        {"Flickr Status = 6: User exceeded upload limit", "when there is space again"},
        {"Flickr Status = 96: Invalid signature", "Check the clock"},
        {"Flickr Status = 98: Invalid auth token", "halvora authorize"},
        {"Flickr Status = 100: Invalid API Key", "a key of your own"},
        {"Flickr Status = 105: Service currently unavailable", "later"},
        {"HTTP Status = 401: Unauthorized, fault", "halvora authorize"},
        {"HTTP Status = 429: Too Many Requests", "Wait some minutes"},
        {"No connection, The connection was refused.",
         "through the proxy 127.0.0.1:9, which the variable all_proxy"},
        {"Connection not secure, The file can't be read.",
         "from /etc/my.pem alone, which the variable HALVORA_CA_FILE"},
        {"HTTP Status = 404: Not Found", nullptr},
        {"Flickr Status = 5: HTTP", nullptr},
    };
    for (const auto &[words, advice] : cases)
    {
        RunRecord record(Items(2));
        Publish(record, {words, words}, "HTTP Status = 503");
        const std::string text = record.Summarize(false, ::Words, settings).text;
        const auto line = text.rfind('\n', text.size() - 2) + 1;
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), advice ? 4 : 3) << text;
        EXPECT_THAT(text.substr(line), HasSubstr(advice ? advice : "  /p/1.jpg: ")) << text;
    }
}

TEST(RunRecord, OfManyThatWereNotTriedTheCountIsEnough)
{
    for (const size_t left : {10u, 11u})
    {
        RunRecord record(Items(left + 1));
        Publish(record, {"Flickr Status = 3: no"});
        const std::string text = record.Summarize(false, Words).text;
        EXPECT_EQ(text.find("11 files were not tried.\n") != text.npos, left == 11) << text;
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), left == 11 ? 3 : 13) << text;
    }
}

TEST(RunRecord, WhatTheServiceGaveAndWhatWasLeftOutIsTold)
{
    ItemCollection collection = Items(2);
    collection.leftOut.push_back({"/p/old.jpg", "was published on a day"});
    RunRecord record(std::move(collection));
    record.ItemBegins(0);
    record.NoteEntry(3, "a complaint that an upload followed");
    record.NoteIds({"7", ""});
    EXPECT_EQ(record.EndOf(0), ItemEnd::Published) << "already";
    record.ItemBegins(1);
    record.NoteIds({"", "ticket"});
    record.RunEnds();
    EXPECT_EQ(record.EndOf(1), ItemEnd::HandedIn);
    const RunSummary summary = record.Summarize(false, Words);
    EXPECT_EQ(summary.text,
              "Published 1 of 2 pictures. Handed in 1 picture, which Flickr publishes in its own time, or "
              "refuses.\n1 picture is on the account already and was left out.\n");
    EXPECT_EQ(summary.exitCode, ExitCode::Success);

    collection = ItemCollection();
    collection.leftOut.push_back({"/p/old.jpg", "was published on a day"});
    collection.undecided.push_back({"/p/0.jpg", "was being sent"});
    EXPECT_EQ(RunRecord(collection).Summarize(false, Words).exitCode, ExitCode::SomeFailed);
    collection.undecided.clear();
    EXPECT_EQ(RunRecord(collection).Summarize(false, Words).exitCode, ExitCode::Success);
}

TEST(RunRecord, TheDecodersReasonIsToldIfItIsWhatFailed)
{
    RunRecord record(Items(2));
    for (const size_t item : {0u, 1u})
    {
        record.ItemBegins(item);
        record.NoteFault(static_cast<HRESULT>(0x88982F60), "ends in the middle");
        record.NoteEntry(3, std::string("Could not publish \"p\" (Error code: ") +
                                (item == 0 ? "0x88982f60) " : "0x80070005) "));
    }
    record.RunEnds();
    EXPECT_EQ(record.ReasonOf(0, Words), "ends in the middle; copy the file again from its source");
    EXPECT_EQ(record.ReasonOf(1, Words), "Access is denied. (0x80070005)");
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
