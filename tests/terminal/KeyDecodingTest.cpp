#include "terminal/KeyDecoding.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
// All keys of what a terminal sends in one go.
std::string KeysOf(std::string bytes)
{
    std::string keys;
    while (!bytes.empty())
    {
        const char first = bytes.front();
        bytes.erase(0, 1);
        const Input input = DecodeKey(first, [&]() -> std::optional<char> {
            if (bytes.empty())
            {
                return std::nullopt;
            }
            const char next = bytes.front();
            bytes.erase(0, 1);
            return next;
        });
        keys += std::to_string(static_cast<int>(input.What));
        keys += input.Character != 0 ? ":" + std::to_string(static_cast<unsigned>(input.Character)) : "";
        keys +=
            input.What == Key::Click ? "@" + std::to_string(input.Column) + "," + std::to_string(input.Row) : "";
        keys += " ";
    }
    return keys;
}

std::string Names(const std::vector<Key> &keys)
{
    std::string names;
    for (const Key key : keys)
    {
        names += std::to_string(static_cast<int>(key)) + " ";
    }
    return names;
}
} // namespace

TEST(KeyDecoding, KnowsTheKeysOfTheUsualTerminals)
{
    const struct
    {
        const char *bytes;
        std::vector<Key> keys;
    } cases[] = {
        {"\x1B[A\x1BOA\x1B[B\x1BOB", {Key::Up, Key::Up, Key::Down, Key::Down}},
        {"\x1B[C\x1BOC\x1B[D\x1BOD", {Key::Right, Key::Right, Key::Left, Key::Left}},
        {"\x1B[H\x1BOH\x1B[1~\x1B[7~", {Key::Home, Key::Home, Key::Home, Key::Home}},
        {"\x1B[F\x1BOF\x1B[4~\x1B[8~", {Key::End, Key::End, Key::End, Key::End}},
        {"\x1B[5~\x1B[6~\x1B[5;5~\x1B[6;5~", {Key::PageUp, Key::PageDown, Key::PreviousPage, Key::NextPage}},
        {"\x1BOS\x1B[14~\x1B[[D", {Key::OpenList, Key::OpenList, Key::OpenList}},
        {"\t\x1B[Z\r\n\x1B[3~", {Key::Tab, Key::BackTab, Key::Enter, Key::Enter, Key::Delete}},
        {"\b\x7F\x15\x03\x04", {Key::Backspace, Key::Backspace, Key::EraseLine, Key::Interrupt, Key::EndOfInput}},
        {"\x1B", {Key::Escape}},
        {"\x1B[<64;3;4M\x1B[<65;3;4M", {Key::WheelUp, Key::WheelDown}},
        // A key that means nothing here takes its bytes with it.
        {"\x1B[15~\x1B[1;2P\x1Bx\x01\x1B[<0;3;4m\x1B[<2;3;4M",
         {Key::None, Key::None, Key::None, Key::None, Key::None, Key::None}},
        {"\xFF\xC3\xED\xA0\x80", {Key::None, Key::None}},
    };
    for (const auto &[bytes, keys] : cases)
    {
        EXPECT_EQ(KeysOf(bytes), Names(keys)) << testing::PrintToString(bytes);
    }
}

TEST(KeyDecoding, ReadsCharactersAndPlaces)
{
    const std::string character = std::to_string(static_cast<int>(Key::Character)) + ":";
    EXPECT_EQ(KeysOf("a é漢📷"), character + "97 " + character + "32 " + character + "233 " + character + "28450 " +
                                    character + "128247 ");
    EXPECT_EQ(KeysOf("\x1B[<0;3;124M"), std::to_string(static_cast<int>(Key::Click)) + "@2,123 ");
}
