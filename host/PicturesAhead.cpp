#include "host/PicturesAhead.h"

#include "host/FileNames.h"

#include <algorithm>
#include <system_error>

namespace fs = std::filesystem;

namespace
{
constexpr unsigned MostThreads = 8;
constexpr size_t MostBytesOfThread = size_t{32} << 20;
// How many items are searched for the next pictures to decode; others are sent as they are on disk.
constexpr size_t Sight = 2 * MostThreads;

std::string LowerExtensionOf(const fs::path &file)
{
    return LowerAscii(ExtensionOf(file));
}
} // namespace

unsigned DecodingThreads() noexcept
{
    return std::clamp(std::thread::hardware_concurrency(), 1u, MostThreads);
}

PicturesAhead::PicturesAhead(const std::vector<PictureItem> &items, PictureDecoder decoder, unsigned threads)
    : m_items(items), m_decoder(std::move(decoder)), m_threads(threads)
{
}

void PicturesAhead::ItemBegins(size_t index)
{
    const std::lock_guard guard(m_lock);
    m_item = index;
    // The plug-in never asked for the pictures of earlier items: they were wrong guesses.
    for (const JobPtr &job : std::list<JobPtr>(m_jobs))
    {
        if (job->item < index)
        {
            DropLocked(job);
        }
    }
}

std::shared_ptr<const DecodedPicture> PicturesAhead::Take(const fs::path &file, UINT longEdge)
{
    std::shared_ptr<const DecodedPicture> picture;
    {
        std::unique_lock lock(m_lock);
        if (const JobPtr job = Find(file, longEdge))
        {
            // A job that hasn't begun is decoded below: that is sooner than waiting for the job before it.
            m_changed.wait(lock, [&] { return job->stage != Stage::Making || m_stopped; });
            if (job->stage == Stage::Ready && LookAtFile(file) == job->state)
            {
                picture = job->picture;
                ++m_hits;
            }
            DropLocked(job);
        }
        m_isDecoded[LowerExtensionOf(file)] = true;
        // After a picture in full size the next ones are planned below, once its size is known.
        if (picture || longEdge != 0)
        {
            PlanLocked(file, longEdge, picture ? picture->pixels.size() : 0);
        }
        m_making += picture ? 0 : 1;
    }
    if (picture)
    {
        return picture;
    }
    picture = MakeHere(file, longEdge);
    const std::lock_guard guard(m_lock);
    PlanLocked(file, longEdge, picture->pixels.size());
    return picture;
}

std::shared_ptr<const DecodedPicture> PicturesAhead::MakeHere(const fs::path &file, UINT longEdge)
{
    const struct Counted
    {
        ~Counted()
        {
            const std::lock_guard guard(ahead.m_lock);
            --ahead.m_making;
            ahead.m_changed.notify_all();
        }
        PicturesAhead &ahead;
    } counted{*this};
    return std::make_shared<const DecodedPicture>(m_decoder(file, longEdge, nullptr));
}

void PicturesAhead::NoteUndecoded(const fs::path &file)
{
    const std::lock_guard guard(m_lock);
    m_isDecoded[LowerExtensionOf(file)] = false;
}

void PicturesAhead::Stop()
{
    {
        const std::lock_guard guard(m_lock);
        m_stopped = true;
        for (const JobPtr &job : std::list<JobPtr>(m_jobs))
        {
            DropLocked(job);
        }
    }
    m_changed.notify_all();
    for (std::thread &worker : m_workers)
    {
        worker.join();
    }
    m_workers.clear();
}

size_t PicturesAhead::Hits() const
{
    const std::lock_guard guard(m_lock);
    return m_hits;
}

PicturesAhead::JobPtr PicturesAhead::Find(const fs::path &file, UINT longEdge) const
{
    const auto found = std::find_if(m_jobs.begin(), m_jobs.end(), [&](const JobPtr &job) {
        return job->state.path == file && job->longEdge == longEdge;
    });
    return found == m_jobs.end() ? nullptr : *found;
}

// Null if the plug-in is likely to send the file as it is on disk, or if nothing is known.
const std::string *PicturesAhead::GuessExtension(const PictureItem &item, const std::string &asked) const
{
    for (const std::string &extension : item.extensions)
    {
        if (LowerAscii(extension) == asked)
        {
            return &extension;
        }
    }
    if (item.extensions.size() != 1)
    {
        return nullptr;
    }
    const auto known = m_isDecoded.find(LowerAscii(item.extensions[0]));
    return known != m_isDecoded.end() && known->second ? &item.extensions[0] : nullptr;
}

// bytes: of the picture asked for, 0 if not known.
void PicturesAhead::PlanLocked(const fs::path &asked, UINT longEdge, size_t bytes)
{
    const size_t expected = longEdge == 0 ? bytes : size_t{longEdge} * longEdge * 3;
    const size_t room =
        std::clamp(m_threads * MostBytesOfThread / std::max<size_t>(expected, 1), size_t{1}, m_threads + 1);
    const std::string extension = LowerExtensionOf(asked);
    const size_t end = std::min(m_items.size(), m_item + 1 + Sight);
    for (size_t item = m_item + 1; item < end && m_jobs.size() < room && !m_stopped; ++item)
    {
        const std::string *const guess = GuessExtension(m_items[item], extension);
        if (guess == nullptr)
        {
            continue;
        }
        const auto state = LookAtFile(m_items[item].FileWith(*guess));
        if (state && !Find(state->path, longEdge))
        {
            m_jobs.push_back(std::make_shared<Job>(item, *state, longEdge));
        }
    }
    try
    {
        while (m_workers.size() < std::min(m_threads, m_jobs.size()) && !m_stopped)
        {
            m_workers.emplace_back([this] { Work(); });
        }
    }
    catch (const std::system_error &)
    {
        // With fewer threads than wanted it takes longer; what none has begun, Take makes itself.
    }
    m_changed.notify_all();
}

void PicturesAhead::DropLocked(const JobPtr &job)
{
    job->dropped = true;
    job->picture.reset();
    m_jobs.remove(job);
}

void PicturesAhead::Work()
{
    std::unique_lock lock(m_lock);
    for (;;)
    {
        JobPtr next;
        m_changed.wait(lock, [&] {
            const auto waiting = std::find_if(m_jobs.begin(), m_jobs.end(),
                                              [](const JobPtr &job) { return job->stage == Stage::Waiting; });
            next = waiting == m_jobs.end() || m_making >= m_threads ? nullptr : *waiting;
            return next || m_stopped;
        });
        if (m_stopped)
        {
            return;
        }
        next->stage = Stage::Making;
        ++m_making;
        lock.unlock();
        std::shared_ptr<const DecodedPicture> made;
        try
        {
            made = std::make_shared<const DecodedPicture>(
                m_decoder(next->state.path, next->longEdge, &next->dropped));
        }
        catch (...)
        {
            // Take decodes it again, meets the same failure and reports it.
        }
        lock.lock();
        --m_making;
        next->stage = made ? Stage::Ready : Stage::Failed;
        if (!next->dropped)
        {
            next->picture = std::move(made);
        }
        m_changed.notify_all();
    }
}
