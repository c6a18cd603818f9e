#include "publish/FileChoice.h"

#include "core/TextPieces.h"

namespace
{
struct KnownExtension
{
    const WCHAR *extension;
    ExtensionClass type;
};
constexpr KnownExtension KnownExtensions[] = {
    {TEXT("jpg"), ExtensionClass::Jpeg},  {TEXT("jpeg"), ExtensionClass::Jpeg},
    {TEXT("jpe"), ExtensionClass::Jpeg},  {TEXT("jfif"), ExtensionClass::Jpeg},
    {TEXT("exif"), ExtensionClass::Jpeg}, {TEXT("gif"), ExtensionClass::Web},
    {TEXT("png"), ExtensionClass::Web},
};
} // namespace

ExtensionClass ClassifyExtension(WideView extension) noexcept
{
    for (const KnownExtension &known : KnownExtensions)
    {
        if (EqualsIgnoringCase(extension, known.extension))
        {
            return known.type;
        }
    }
    return ExtensionClass::Other;
}

FileChoice ChooseFile(WideView extensions)
{
    const auto tokens = SplitText(extensions, TEXT(';'));
    for (const WideView token : tokens)
    {
        const ExtensionClass type = ClassifyExtension(token);
        if (type != ExtensionClass::Other)
        {
            return {type, token};
        }
    }
    return {ExtensionClass::Other, tokens.empty() ? WideView() : tokens.front()};
}
