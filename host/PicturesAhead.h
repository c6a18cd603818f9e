// Decodes pictures before the plug-in asks for them, while an earlier one is being uploaded.
//
// The plug-in asks for one picture after the other and says with each what it wants of it. The next ones
// are guessed: the items that follow, of the same extension or of one asked for before, at the size last
// asked for. A wrong guess costs time on another core and nothing else.
//
// They are made on several threads, and one more picture than there are threads is ready or in the making, so that
// no thread waits for the plug-in. What the plug-in's own thread makes meanwhile counts as one of them. There are fewer
// where so many could take more than 32 MB for each thread, down to one.
#pragma once

#include "host/FileDigest.h"
#include "host/PictureDecoding.h"
#include "host/PictureItems.h"

#include <condition_variable>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

// As DecodePicture.
using PictureDecoder =
    std::function<DecodedPicture(const std::filesystem::path &, UINT longEdge, const std::atomic<bool> *stop)>;

// As many as the machine has cores, at most eight.
unsigned DecodingThreads() noexcept;

class PicturesAhead
{
public:
    // The items must outlive the object. threads is at least 1; they start when there is something to do for them.
    PicturesAhead(const std::vector<PictureItem> &items, PictureDecoder decoder,
                  unsigned threads = DecodingThreads());
    ~PicturesAhead() { Stop(); }
    PicturesAhead(const PicturesAhead &) = delete;
    PicturesAhead &operator=(const PicturesAhead &) = delete;

    // The item that is asked about from here on.
    void ItemBegins(size_t index);

    // The picture of a file: the one made ahead if path and longEdge are those it was made for and the
    // file has kept its size and time, else made now, on this thread. Starts those that follow. Throws
    // what the decoder throws; a picture that failed ahead is decoded again here, so that the failure is
    // reported with its item.
    std::shared_ptr<const DecodedPicture> Take(const std::filesystem::path &file, UINT longEdge);

    // The plug-in wanted no picture of the current item's file, so others like it needn't be decoded.
    void NoteUndecoded(const std::filesystem::path &file);

    // Ends the threads; nothing is made ahead any more. Idempotent, and called on one thread.
    void Stop();

    // How many were found ready or in the making, for measuring.
    size_t Hits() const;

private:
    enum class Stage
    {
        Waiting,
        Making,
        Ready,
        Failed
    };
    struct Job
    {
        Job(size_t index, FileState file, UINT edge) : item(index), state(std::move(file)), longEdge(edge) {}

        const size_t item;
        const FileState state; // when it was planned
        const UINT longEdge;
        Stage stage = Stage::Waiting;
        std::shared_ptr<const DecodedPicture> picture;
        std::atomic<bool> dropped = false;
    };
    using JobPtr = std::shared_ptr<Job>;

    JobPtr Find(const std::filesystem::path &file, UINT longEdge) const;
    void PlanLocked(const std::filesystem::path &asked, UINT longEdge, size_t bytes);
    const std::string *GuessExtension(const PictureItem &item, const std::string &asked) const;
    void DropLocked(const JobPtr &job);
    std::shared_ptr<const DecodedPicture> MakeHere(const std::filesystem::path &file, UINT longEdge);
    void Work();

    const std::vector<PictureItem> &m_items;
    const PictureDecoder m_decoder;
    mutable std::mutex m_lock;
    std::condition_variable m_changed;
    std::list<JobPtr> m_jobs;                // in the order of the items
    std::map<std::string, bool> m_isDecoded; // by extension, as the plug-in asked last
    size_t m_item = 0;
    size_t m_hits = 0;
    size_t m_making = 0; // on the threads and in Take
    bool m_stopped = false;
    const size_t m_threads;
    std::vector<std::thread> m_workers;
};
