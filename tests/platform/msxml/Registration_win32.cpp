#include "Registration.h"

// Windows has the class.
void RegisterDocumentClass() {}
