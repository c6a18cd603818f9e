// Pictures that were handed in: the service gave each a ticket, and is asked by it what became of the picture.
#pragma once

#include "host/Journal.h"

#include <string>
#include <vector>

// Asks about every ticket in the journal and enters what the service says. A picture that it refused is taken out, so
// that the next run sends it again. Returns in words what could not be found out, and which pictures were refused.
std::vector<std::string> RefreshTickets(Journal &journal, const AccountData &account);
