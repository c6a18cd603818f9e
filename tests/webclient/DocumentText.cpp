#include "tests/webclient/DocumentText.h"

#include "com/BstrOwner.h"
#include "com/ComPtr.h"
#include "webclient/Utf8.h"

std::string DocumentText(IUnknown *document, const char *path)
{
    const auto loaded = QueryFor<IXMLDOMDocument2>(document);
    if (!loaded)
    {
        return "(no document)";
    }
    ComPtr<IXMLDOMNode> node;
    BstrOwner text;
    const BstrOwner widePath(WideFromUtf8(path));
    if (loaded->selectSingleNode(widePath.Get(), node.Put()) != S_OK || FAILED(node->get_text(text.Put())))
    {
        return "(none)";
    }
    return Utf8FromWide(text.View());
}
