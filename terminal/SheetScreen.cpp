#include "terminal/SheetScreen.h"

#include "terminal/TerminalDevice.h"
#include "terminal/TerminalText.h"

#include <string>
#include <utility>

namespace
{
// A new size of the terminal is noticed after this time at most.
constexpr int ResizeMilliseconds = 200;

class TerminalScreen final : public ISheetScreen
{
public:
    explicit TerminalScreen(std::unique_ptr<TerminalDevice> device) : m_device(std::move(device))
    {
        m_device->TakeScreen();
    }
    ~TerminalScreen() override { m_device->ReturnScreen(); }
    TerminalScreen(const TerminalScreen &) = delete;
    TerminalScreen &operator=(const TerminalScreen &) = delete;

    int Columns() const override { return static_cast<int>(m_size.Columns); }
    int Rows() const override { return static_cast<int>(m_size.Rows); }
    bool IsUnicode() const override { return m_device->Abilities().IsUnicode; }

    void Clear() override
    {
        m_picture = "\x1B[?25l\x1B[2J";
        m_cursor.clear();
    }

    void Write(int column, int row, std::u16string_view text, Look look) override
    {
        if (row >= 0 && row < Rows() && column >= 0 && column < Columns())
        {
            const std::u16string_view fitting = FitToWidth(text, static_cast<size_t>(Columns() - column));
            m_picture.append(Position(column, row)).append(CodeOf(look));
            m_picture.append(TerminalLine(fitting, IsUnicode())).append("\x1B[0m");
        }
    }

    void PlaceCursor(int column, int row) override
    {
        const bool isSeen = column >= 0 && column < Columns() && row < Rows();
        m_cursor = isSeen ? Position(column, row) + "\x1B[?25h" : "";
    }

    // A picture that is there already isn't drawn again.
    void Show() override
    {
        if (m_picture + m_cursor != m_shown)
        {
            m_shown = m_picture + m_cursor;
            m_device->Write(m_shown);
        }
    }

    Input Read() override
    {
        for (;;)
        {
            const Input input = m_device->Read(ResizeMilliseconds);
            if (input.What == Key::Interrupt)
            {
                return {Key::Escape};
            }
            if (input.What != Key::None && input.What != Key::EndOfInput)
            {
                return input;
            }
            const TerminalSize before = std::exchange(m_size, m_device->Size());
            if (before.Columns != m_size.Columns || before.Rows != m_size.Rows)
            {
                m_shown.clear();
                return {Key::Redraw};
            }
        }
    }

    void DiscardInput() override { m_device->DiscardInput(); }
    void Beep() override { m_device->Write("\a"); }

    void Lend(const std::function<void()> &borrower) override
    {
        m_device->Lend(borrower);
        m_shown.clear();
    }

private:
    static std::string Position(int column, int row)
    {
        return "\x1B[" + std::to_string(row + 1) + ";" + std::to_string(column + 1) + "H";
    }

    const char *CodeOf(Look look) const
    {
        switch (look)
        {
        case Look::Strong:
            return "\x1B[1m";
        case Look::Dim:
            return "\x1B[2m";
        case Look::Link:
            return m_device->Abilities().HasColour ? "\x1B[4;36m" : "\x1B[4m";
        case Look::Focus:
            return "\x1B[7m";
        default:
            return "";
        }
    }

    std::unique_ptr<TerminalDevice> m_device;
    TerminalSize m_size = m_device->Size();
    std::string m_picture;
    std::string m_cursor;
    std::string m_shown;
};
} // namespace

std::unique_ptr<ISheetScreen> OpenTerminalScreen()
{
    auto device = TerminalDevice::Open();
    if (device == nullptr || !device->Abilities().MovesCursor)
    {
        return nullptr;
    }
    return std::make_unique<TerminalScreen>(std::move(device));
}
