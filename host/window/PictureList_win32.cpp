#include "host/window/PictureList_win32.h"

#include "host/FileNames.h"
#include "host/window/Thumbnails_win32.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace
{
std::wstring NameOf(const PictureItem &item)
{
    return item.File(0).filename().wstring();
}

void AddExtensions(PictureItem &item, const std::vector<std::string> &extensions)
{
    std::ranges::copy_if(
        extensions, std::back_inserter(item.extensions),
        [known = item.extensions](const auto &each) { return std::ranges::count(known, each) == 0; });
}
} // namespace

PictureList::PictureList(HWND view, int edge, UINT thumbnailMessage)
    : m_view(view),
      m_edge(edge),
      m_images(ImageList_Create(edge, edge, ILC_COLOR32, 16, 16)),
      m_maker(edge, GetParent(view), thumbnailMessage)
{
    ListView_SetExtendedListViewStyle(m_view, LVS_EX_DOUBLEBUFFER);
    ListView_SetImageList(m_view, m_images, LVSIL_NORMAL);
    const BitmapOwner empty = EmptyFrame(m_edge);
    ImageList_Add(m_images, empty.Get(), nullptr);
}

// The view is destroyed with the window, so it no longer uses the image list.
PictureList::~PictureList()
{
    if (IsWindow(m_view))
    {
        ListView_SetImageList(m_view, nullptr, LVSIL_NORMAL);
    }
    ImageList_Destroy(m_images);
}

void PictureList::Add(const std::vector<PictureItem> &items)
{
    std::map<std::filesystem::path, size_t> known;
    for (size_t row = 0; row < m_pictures.size(); ++row)
    {
        known.emplace(m_pictures[row].identity, row);
    }
    SendMessageW(m_view, WM_SETREDRAW, FALSE, 0);
    for (const PictureItem &item : items)
    {
        const std::filesystem::path identity = IdentityOf(item.stem);
        const auto [place, isNew] = known.emplace(identity, m_pictures.size());
        if (isNew)
        {
            Insert(item, identity);
        }
        else
        {
            AddExtensions(m_pictures[place->second].item, item.extensions);
        }
    }
    SendMessageW(m_view, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(m_view, nullptr, TRUE);
}

void PictureList::Insert(const PictureItem &item, const std::filesystem::path &identity)
{
    Picture picture;
    picture.number = ++m_lastNumber;
    picture.item = item;
    picture.identity = identity;
    m_pictures.push_back(std::move(picture));
    std::wstring name = NameOf(item);
    LVITEMW row{};
    row.mask = LVIF_TEXT | LVIF_IMAGE;
    row.iItem = static_cast<int>(m_pictures.size()) - 1;
    row.pszText = name.data();
    row.iImage = 0;
    ListView_InsertItem(m_view, &row);
    m_maker.Ask(m_lastNumber, item.Files());
}

void PictureList::RemoveSelected()
{
    for (int row = static_cast<int>(m_pictures.size()) - 1; row >= 0; --row)
    {
        if (ListView_GetItemState(m_view, row, LVIS_SELECTED) != 0)
        {
            ListView_DeleteItem(m_view, row);
            if (const int image = m_pictures[static_cast<size_t>(row)].image; image != 0)
            {
                m_freeImages.push_back(image);
            }
            m_pictures.erase(m_pictures.begin() + row);
        }
    }
    ListView_Arrange(m_view, LVA_DEFAULT);
}

void PictureList::SelectAll()
{
    ListView_SetItemState(m_view, -1, LVIS_SELECTED, LVIS_SELECTED);
}

size_t PictureList::SelectedCount() const
{
    return ListView_GetSelectedCount(m_view);
}

PictureList::Picture *PictureList::Find(int number)
{
    const auto found = std::find_if(m_pictures.begin(), m_pictures.end(),
                                    [&](const Picture &picture) { return picture.number == number; });
    return found == m_pictures.end() ? nullptr : &*found;
}

void PictureList::ShowThumbnails()
{
    for (Thumbnail &thumbnail : m_maker.Take())
    {
        // One that was removed meanwhile has no row any more.
        Picture *const picture = Find(thumbnail.picture);
        if (picture != nullptr && thumbnail.bitmap)
        {
            Show(*picture, thumbnail.bitmap.Get());
        }
    }
}

void PictureList::Show(Picture &picture, HBITMAP thumbnail)
{
    if (picture.end != ItemEnd::NotTried || picture.isUploading)
    {
        DrawBadge(thumbnail, m_edge,
                  picture.isUploading                                                     ? Badge::Uploading
                  : picture.end == ItemEnd::Published || picture.end == ItemEnd::HandedIn ? Badge::Published
                                                                                          : Badge::Failed);
    }
    if (picture.image == 0 && !m_freeImages.empty())
    {
        picture.image = m_freeImages.back();
        m_freeImages.pop_back();
    }
    if (picture.image == 0)
    {
        picture.image = std::max(ImageList_Add(m_images, thumbnail, nullptr), 0);
    }
    else
    {
        ImageList_Replace(m_images, picture.image, thumbnail, nullptr);
    }
    LVITEMW row{};
    row.mask = LVIF_IMAGE;
    row.iItem = RowOf(picture);
    row.iImage = picture.image;
    ListView_SetItem(m_view, &row);
    ListView_RedrawItems(m_view, row.iItem, row.iItem);
}

void PictureList::MarkKnown(const std::function<std::optional<ItemEnd>(const PictureItem &)> &endBefore)
{
    for (Picture &picture : m_pictures)
    {
        const auto end = picture.end == ItemEnd::NotTried ? endBefore(picture.item) : std::nullopt;
        if (end)
        {
            picture.end = *end;
            Show(picture, CopyOf(m_images, picture.image, m_edge).Get());
        }
    }
}

size_t PictureList::CountOf(ItemEnd end) const
{
    return static_cast<size_t>(std::ranges::count(m_pictures, end, &Picture::end));
}

std::vector<PictureItem> PictureList::BeginRun(const std::function<bool(ItemEnd)> &isChosen)
{
    std::vector<PictureItem> chosen;
    m_run.clear();
    for (const Picture &picture : m_pictures)
    {
        if (isChosen(picture.end))
        {
            m_run.push_back(static_cast<size_t>(RowOf(picture)));
            chosen.push_back(picture.item);
        }
    }
    return chosen;
}

void PictureList::MarkEnds(const RunRecord &record)
{
    for (size_t i = 0; i < m_run.size(); ++i)
    {
        Picture &picture = m_pictures[m_run[i]];
        const ItemEnd end = record.EndOf(i);
        const bool isUploading = record.Current() == i;
        // An error is noted while its picture is still the one under way; its badge follows when it has ended.
        const bool changes = isUploading != std::exchange(picture.isUploading, isUploading) ||
                             (end != ItemEnd::NotTried && end != picture.end);
        if (end != ItemEnd::NotTried)
        {
            picture.end = end;
        }
        if (changes && (isUploading || picture.end != ItemEnd::NotTried))
        {
            Show(picture, CopyOf(m_images, picture.image, m_edge).Get());
        }
    }
}

void PictureList::DrawHint(NMLVCUSTOMDRAW &drawing, const std::wstring &hint) const
{
    const HDC context = drawing.nmcd.hdc;
    RECT area{};
    GetClientRect(m_view, &area);
    const HGDIOBJ font = SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(m_view, WM_GETFONT, 0, 0)));
    SetBkMode(context, TRANSPARENT);
    SetTextColor(context, GetSysColor(COLOR_GRAYTEXT));
    DrawTextW(context, hint.c_str(), -1, &area, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    SelectObject(context, font);
}
