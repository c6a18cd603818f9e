#include "tests/webclient/DocumentText.h"

void UseDocumentComponent() {}
