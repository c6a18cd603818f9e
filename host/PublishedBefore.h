// What of a collection isn't to be sent: pictures that the journal knows to be on the account already, and copies within
// the collection. Those whose outcome is unknown are for the user to decide.
#pragma once

#include "host/Journal.h"
#include "host/PictureItems.h"

#include <functional>
#include <optional>
#include <vector>

// For each item its entry in the journal, if it or a file with the same bytes has one. A picture of several files has
// that of the first that was published. goesOn is asked before each item; where it returns false the rest has none.
std::vector<std::optional<JournalEntry>> FindPublished(const std::vector<PictureItem> &items, Journal &journal,
                                                       const JournalAccount &account,
                                                       const std::function<bool()> &goesOn);

// How many of the entries have an unknown outcome.
size_t CountUnknown(const std::vector<std::optional<JournalEntry>> &entries);

// Moves the items that have an entry to those left out, or, where the outcome is unknown, to those undecided. With
// sendsUnknown these stay items.
void LeaveOut(ItemCollection &collection, const std::vector<std::optional<JournalEntry>> &entries,
              bool sendsUnknown);

// Moves to the copies each item that has a file with the same bytes as one of an item before it.
void LeaveOutCopies(ItemCollection &collection);
