#include "host/PlannedRun.h"

#include "host/FileList.h"
#include "host/FileNames.h"
#include "host/PublishedBefore.h"
#include "host/Terminal_posix.h"
#include "host/TextEncodings.h"

#include "com/SafeText.h"
#include "com/WholeFile.h"
#include "settings/SettingsStore.h"
#include "settings/StateLine.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <iterator>

namespace
{
// Lists of millions of names; no more is read by mistake.
constexpr size_t LongestList = size_t{1} << 30;

char EndOfLine(const CommandLine &line)
{
    return line.endsWithZero ? '\0' : '\n';
}

std::vector<std::filesystem::path> ReadList(const CommandLine &line)
{
    const char end = EndOfLine(line);
    if (line.filesFrom == "-")
    {
        return FilesOfList(std::string(std::istreambuf_iterator<char>(std::cin), {}), end);
    }
    const auto text = ReadWholeFile(line.filesFrom, LongestList);
    if (!text)
    {
        throw std::system_error(std::make_error_code(std::errc::no_such_file_or_directory));
    }
    return FilesOfList(*text, end);
}

bool CanAsk()
{
    return ::isatty(STDIN_FILENO) && ::isatty(STDERR_FILENO);
}

bool Confirms(const std::string &question)
{
    std::cerr << OneSafeLine(question) << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return answer.starts_with('y') || answer.starts_with('Y');
}

bool SendsUnknown(const CommandLine &line, size_t number, LiveDisplay &display)
{
    if (number == 0 || line.unknown != UnknownChoice::Ask)
    {
        return line.unknown == UnknownChoice::Send;
    }
    if (CanAsk() && !line.dryRun)
    {
        return Confirms(std::to_string(number) +
                        " of the pictures may have been published by a run that was broken "
                        "off (halvora history lists them). Send them again? [y/N] ");
    }
    display.Log(2,
                std::to_string(number) +
                    " of the pictures may have been published by a run that was broken off. Look at Flickr, then "
                    "decide: --unknown skip leaves them out, --unknown send sends them again.");
    return false;
}

// Null if the user wants to publish without it.
std::unique_ptr<Journal> OpenJournal(const CommandLine &line, const Profile &profile, LiveDisplay &display)
{
    try
    {
        return std::make_unique<Journal>(profile);
    }
    catch (const ProfileError &error)
    {
        const std::string words = std::string(error.what()) + " What was published before can't be left out";
        if (!line.again && !(CanAsk() && Confirms(words + ". Publish all the same? [y/N] ")))
        {
            throw ProfileError(words + ", so nothing was sent; --again publishes all the same.");
        }
        display.Log(2, words + ".");
        return nullptr;
    }
}

std::string SizeText(std::uintmax_t bytes)
{
    char text[32];
    const bool isSmall = bytes < 1000000;
    std::snprintf(text, sizeof(text), isSmall ? "%.1f kB" : "%.1f MB",
                  static_cast<double>(bytes) / (isSmall ? 1e3 : 1e6));
    return text;
}

// The files of a picture, of which the plug-in takes one, with their sizes; bytes gets the size of the largest.
std::string FilesText(const PictureItem &item, std::uintmax_t &bytes)
{
    std::string text;
    for (size_t i = 0; i < item.extensions.size(); ++i)
    {
        const std::uintmax_t size = LookAtFile(item.File(i)).value_or(FileState()).size;
        bytes = std::max(bytes, size);
        text += (i == 0 ? "" : ", or ") +
                (i == 0 ? ShownPath(item.TypedFile()) : ShownPath(item.File(i).filename())) + " (" +
                SizeText(size) + ")";
    }
    return text;
}

// Counts on the terminal's line what is looked at before a run: a large tree takes long to read, and longer to compare
// where many files were renamed.
class CountedLine
{
public:
    CountedLine(LiveDisplay &display, std::string words, size_t count = 0)
        : m_display(display), m_words(std::move(words)), m_count(static_cast<std::int64_t>(count))
    {
    }
    ~CountedLine() { m_display.EndProgress(); }
    CountedLine(const CountedLine &) = delete;
    CountedLine &operator=(const CountedLine &) = delete;

    bool operator()()
    {
        ++m_done;
        m_display.ShowProgress({.high = m_count, .position = m_done, .status = m_words + std::to_string(m_done)},
                               LiveDisplay::Clock::now());
        return true;
    }

private:
    LiveDisplay &m_display;
    const std::string m_words;
    const std::int64_t m_count; // 0: not known
    std::int64_t m_done = 0;
};
} // namespace

ItemCollection CollectNamed(const CommandLine &line, std::vector<std::string> &faults, LiveDisplay &display)
{
    std::vector<std::filesystem::path> paths = line.paths;
    try
    {
        if (!line.filesFrom.empty())
        {
            std::ranges::move(ReadList(line), std::back_inserter(paths));
        }
    }
    catch (const std::system_error &error)
    {
        faults.push_back("The list " + ShownPath(line.filesFrom) +
                         " can't be read: " + FileErrorWords(error.code()) + ".");
    }
    CountedLine looked(display, "Files looked at: ");
    ItemCollection collection = CollectItems(paths, line.recursive, [&] { looked(); });
    for (const auto &folder : collection.folders)
    {
        faults.push_back(ShownPath(folder) + " is a folder; give --recursive to publish what is in it.");
    }
    return collection;
}

PlannedRun PlanRun(ItemCollection pictures, const CommandLine &line, const Profile &profile,
                   const AccountData &account, LiveDisplay &display)
{
    PlannedRun plan = {std::move(pictures), JournalAccount::Of(account), OpenJournal(line, profile, display)};
    if (!plan.journal)
    {
        return plan;
    }
    for (const std::string &notice : plan.journal->TakeNotices())
    {
        display.Log(2, notice);
    }
    plan.journal->Recognize(plan.account);
    if (line.again)
    {
        return plan;
    }
    const auto entries = [&] {
        CountedLine compared(display, "Compared with what is on the account: ", plan.pictures.items.size());
        return FindPublished(plan.pictures.items, *plan.journal, plan.account, [&] { return compared(); });
    }();
    LeaveOut(plan.pictures, entries, SendsUnknown(line, CountUnknown(entries), display));
    LeaveOutCopies(plan.pictures);
    for (const RefusedFile &copy : plan.pictures.copies)
    {
        display.Log(1, ShownPath(copy.path) + " " + copy.reason + ".");
    }
    for (const RefusedFile &left : plan.pictures.leftOut)
    {
        display.Log(left.reason.find(" as ") == left.reason.npos ? 0 : 1,
                    ShownPath(left.path) + " " + left.reason + ".");
    }
    if (const size_t count = plan.pictures.leftOut.size(); count != 0)
    {
        display.Log(1, std::to_string(count) + (count == 1 ? " picture is" : " pictures are") +
                           " on the account already; --again publishes " + (count == 1 ? "it" : "them") +
                           " all the same.");
    }
    return plan;
}

void ReportLeftOut(const ItemCollection &pictures, const CommandLine &line)
{
    if (!line.porcelain)
    {
        return;
    }
    for (const auto &[outcome, files] :
         {std::pair(PorcelainLeftOut, &pictures.leftOut), std::pair(PorcelainLeftOut, &pictures.copies),
          std::pair(PorcelainWord(ItemEnd::Unknown), &pictures.undecided),
          std::pair(PorcelainWord(ItemEnd::Failed), &pictures.refused)})
    {
        for (const RefusedFile &file : *files)
        {
            WriteOut(PorcelainLine(outcome, file.path, file.photo, file.reason, EndOfLine(line)));
        }
    }
}

ExitCode RunDry(const PlannedRun &plan, const CommandLine &line, LiveDisplay &display)
{
    std::uintmax_t bytes = 0;
    for (const PictureItem &item : plan.pictures.items)
    {
        std::uintmax_t size = 0;
        const std::string files = FilesText(item, size);
        bytes += size;
        line.porcelain ? WriteOut(PorcelainLine(PorcelainToSend, item.TypedFile(), "",
                                                std::to_string(size) + " bytes", EndOfLine(line)))
                       : display.Log(1, "Would publish " + files);
    }
    SettingsBlock settings{};
    LoadSettings(settings);
    display.Print(Utf8FromText(ModeText(settings)) +
                  "; GIF and PNG files are sent as they are, other files become JPEGs.\n");
    const auto count = [](const auto &list, const char *words) {
        return list.empty() ? std::string() : ", " + std::to_string(list.size()) + words;
    };
    display.Print("A run would publish " + std::to_string(plan.pictures.items.size()) + " (" + SizeText(bytes) +
                  ")" + count(plan.pictures.leftOut, " on the account already") +
                  count(plan.pictures.copies, " are copies of others") +
                  count(plan.pictures.undecided, " may be published or not") +
                  count(plan.pictures.refused, " can't be published") + ". Nothing was sent.\n");
    return plan.pictures.refused.empty() && plan.pictures.undecided.empty() ? ExitCode::Success
                                                                            : ExitCode::SomeFailed;
}
