// The pictures of the window: a list view of thumbnails with their names, and what became of each.
#pragma once

#include "host/PictureItems.h"
#include "host/RunRecord.h"
#include "host/window/Thumbnails_win32.h"

#include <windows.h>
#include <commctrl.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class PictureList
{
public:
    // view: an icon view of the window; edge: of a thumbnail, in pixels. thumbnailMessage is posted to the
    // window when ShowThumbnails has something to do.
    PictureList(HWND view, int edge, UINT thumbnailMessage);
    ~PictureList();
    PictureList(const PictureList &) = delete;
    PictureList &operator=(const PictureList &) = delete;

    // An item that is there already gets the extensions that it lacks.
    void Add(const std::vector<PictureItem> &items);
    void RemoveSelected();
    void SelectAll();

    void ShowThumbnails();

    size_t Count() const { return m_pictures.size(); }
    size_t SelectedCount() const;

    // Marks those of the pictures that aren't published whose end before is known.
    void MarkKnown(const std::function<std::optional<ItemEnd>(const PictureItem &)> &endBefore);

    // How many pictures have that end.
    size_t CountOf(ItemEnd end) const;

    // The pictures that are still to be published. One whose outcome is unknown isn't among them: sending it
    // again could publish it twice.
    size_t WaitingCount() const { return CountOf(ItemEnd::NotTried) + CountOf(ItemEnd::Failed); }

    // The items of pictures whose end is chosen, in the list's order, for a run that begins. The list must not change
    // during the run.
    std::vector<PictureItem> BeginRun(const std::function<bool(ItemEnd)> &isChosen);

    // Marks what became of the items of BeginRun so far, and the one that is being uploaded.
    void MarkEnds(const RunRecord &record);

    // Writes the hint into the middle of the view, which must be empty, while that is drawn.
    void DrawHint(NMLVCUSTOMDRAW &drawing, const std::wstring &hint) const;

private:
    struct Picture
    {
        int number;
        PictureItem item;
        std::filesystem::path identity; // of the stem
        int image = 0;                  // 0: none of its own
        ItemEnd end = ItemEnd::NotTried;
        bool isUploading = false;
    };

    void Insert(const PictureItem &item, const std::filesystem::path &identity);
    Picture *Find(int number);
    // Takes the thumbnail, and puts on it the badge of what became of the picture.
    void Show(Picture &picture, HBITMAP thumbnail);
    int RowOf(const Picture &picture) const { return static_cast<int>(&picture - m_pictures.data()); }

    const HWND m_view;
    const int m_edge;
    HIMAGELIST m_images; // the first is the frame of pictures that have no thumbnail
    std::vector<int> m_freeImages;
    int m_lastNumber = 0;
    std::vector<Picture> m_pictures; // row by row
    std::vector<size_t> m_run;       // the rows of the run's items
    ThumbnailMaker m_maker;
};
