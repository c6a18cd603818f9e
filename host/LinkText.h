// Turns lines with links, which the plug-in writes for a window, into text for the terminal.
#pragma once

#include <string>
#include <string_view>

// Each <a id="NAME" ...>words</a> becomes "[words: command]" with the command of this program that does
// what the link would; a link that no command serves keeps its words alone. Entities are resolved.
std::string LinksAsText(std::string_view line);
