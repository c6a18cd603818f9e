// Whether the calling thread is in an apartment.
#pragma once

// True after CoInitializeEx on this thread, and on every thread while some thread holds the
// multithreaded apartment open.
bool IsInApartment();
