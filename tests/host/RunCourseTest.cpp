#include "host/RunCourse.h"

#include <gtest/gtest.h>

namespace
{
std::string Entry(const std::string &words)
{
    return "Could not publish \"x\" (Error code: 0x80004005) " + words;
}

// A record of six items of which as many as there are words were tried, each with that error, or none.
void Try(RunRecord &record, const std::vector<std::string> &errors)
{
    for (size_t i = 0; i < errors.size(); ++i)
    {
        record.ItemBegins(i);
        if (!errors[i].empty())
        {
            record.NoteEntry(4, Entry(errors[i]));
        }
    }
    record.RunEnds();
}

ItemCollection SixItems()
{
    ItemCollection collection;
    for (const char *name : {"a", "b", "c", "d", "e", "f"})
    {
        collection.items.push_back({name, {"jpg"}});
    }
    return collection;
}
} // namespace

TEST(RunCourse, GoesOnAfterTheRefusalOfAFileAlone)
{
    using enum NextRun;
    const std::string no = "No connection, refused.";
    const struct
    {
        std::vector<std::string> errors;
        NextRun next;
        NextRun nextWhereItKeepsTrying;
        size_t failuresToConnect;
    } cases[] = {
        {{"", ""}, None, None, 0},
        {{"", "Flickr Status = 2: no photo"}, Rest, Rest, 0},
        {{"Flickr Status = 3: general"}, Rest, Rest, 0},
        {{"Flickr Status = 4: empty"}, Rest, Rest, 0},
        {{"Flickr Status = 5: type"}, Rest, Rest, 0},
        {{"Flickr Status = 6: limit"}, None, None, 0},
        {{"Flickr Status = 8: large"}, Rest, Rest, 0},
        {{"Flickr Status = 9: twice"}, Rest, Rest, 0},
        {{"Flickr Status = 95: SSL"}, None, None, 0},
        {{"Flickr Status = 98: token"}, None, None, 0},
        {{"Flickr Status = 105: down"}, None, None, 0},
        {{"Flickr Status = 5: type", ""}, None, None, 0},
        {{"", "", "", "", "", "Flickr Status = 5: type"}, None, None, 0}, // nothing is left
        {{"HTTP Status = 503: Busy"}, None, None, 0},
        {{no}, None, AfterPause, 1},
        {{no, "", no, no}, None, AfterPause, 2},
        {{no, no, no, no, no}, None, AfterPause, 5},
        {{"", "", "", "", "", no}, None, AfterPause, 1},
        {{}, None, None, 0},
    };
    for (const auto &one : cases)
    {
        RunRecord record(SixItems());
        Try(record, one.errors);
        const std::string last = one.errors.empty() ? "" : one.errors.back();
        EXPECT_EQ(NextRunAfter(record, false), one.next) << last;
        EXPECT_EQ(NextRunAfter(record, true), one.nextWhereItKeepsTrying) << last;
        EXPECT_EQ(record.FailuresToConnect(), one.failuresToConnect) << last;
        EXPECT_EQ(record.NotTried().size(), 6 - one.errors.size()) << last;
    }
}

TEST(RunCourse, PausesGrowWhileTheSameItemFails)
{
    GrowingPause pause;
    std::string pauses;
    for (const size_t item : {0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 4})
    {
        pauses += std::to_string(pause.Next(item).count()) + " ";
    }
    EXPECT_EQ(pauses, "5 10 20 40 80 160 320 600 600 5 10 ");
}
