// A screen of cells in memory that reads planned input.
#pragma once

#include "terminal/SheetScreen.h"

#include <deque>
#include <string>
#include <vector>

class GridScreen final : public ISheetScreen
{
public:
    GridScreen(int columns, int rows) : m_columns(columns), m_rows(rows) { Clear(); }

    // Inputs are read in the order of planning; after the last, Read returns Lost.
    void Plan(Key key, int times = 1) { m_input.insert(m_input.end(), static_cast<size_t>(times), Input{key}); }
    void Plan(std::u32string_view typed)
    {
        for (const char32_t character : typed)
        {
            m_input.push_back({Key::Character, character});
        }
    }
    // Clicks where the text is first shown when the click is read.
    void PlanClickOn(std::u16string text)
    {
        m_input.push_back({Key::Click});
        m_clickTexts.push_back(std::move(text));
    }

    bool Shows(std::u16string_view text) const { return RowOf(text) >= 0; }
    int RowOf(std::u16string_view text) const
    {
        for (size_t row = 0; row < m_cells.size(); ++row)
        {
            if (m_cells[row].find(text) != m_cells[row].npos)
            {
                return static_cast<int>(row);
            }
        }
        return -1;
    }

    int Columns() const override { return m_columns; }
    int Rows() const override { return m_rows; }
    bool IsUnicode() const override { return false; }
    void Clear() override
    {
        m_cells.assign(static_cast<size_t>(m_rows), std::u16string(static_cast<size_t>(m_columns), u' '));
        Focused.clear();
    }
    void Write(int column, int row, std::u16string_view text, Look look) override
    {
        for (const char16_t unit : text)
        {
            if (row >= 0 && row < m_rows && column >= 0 && column < m_columns)
            {
                m_cells[static_cast<size_t>(row)][static_cast<size_t>(column)] = unit;
            }
            ++column;
        }
        if (look == Look::Focus)
        {
            Focused += text;
        }
    }
    void PlaceCursor(int, int) override {}
    void Show() override { Pictures.push_back(Picture()); }
    Input Read() override
    {
        if (m_input.empty())
        {
            return {Key::Lost};
        }
        Input input = m_input.front();
        m_input.pop_front();
        if (input.What == Key::Click)
        {
            input.Row = RowOf(m_clickTexts.front());
            input.Column =
                input.Row < 0
                    ? -1
                    : static_cast<int>(m_cells[static_cast<size_t>(input.Row)].find(m_clickTexts.front()));
            m_clickTexts.pop_front();
        }
        return input;
    }
    void DiscardInput() override { ++Discards; }
    void Beep() override { ++Beeps; }
    void Lend(const std::function<void()> &borrower) override { borrower(); }

    std::u16string Picture() const
    {
        std::u16string picture;
        for (const std::u16string &row : m_cells)
        {
            picture += row.substr(0, row.find_last_not_of(u' ') + 1) + u"\n";
        }
        return picture;
    }

    std::vector<std::u16string> Pictures;
    std::u16string Focused; // what was last drawn as having the focus
    int Beeps = 0;
    int Discards = 0;

private:
    int m_columns;
    int m_rows;
    std::vector<std::u16string> m_cells;
    std::deque<Input> m_input;
    std::deque<std::u16string> m_clickTexts;
};
