// Makes the document class available to CoCreateInstance.
#pragma once

void RegisterDocumentClass();
