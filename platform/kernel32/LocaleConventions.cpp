#include "platform/kernel32/LocaleConventions.h"

#include <unicode/uloc.h>
#include <unicode/unum.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>

namespace
{
constexpr uint32_t InvariantLocale = 0x7F;
constexpr char StandIn[] = "en_US";

std::string EnvironmentLocale()
{
    for (const char *variable : {"LC_ALL", "LC_NUMERIC", "LANG"})
    {
        const char *const value = std::getenv(variable);
        if (value != nullptr && *value != '\0')
        {
            const std::string locale(value);
            const std::string name = locale.substr(0, locale.find_first_of(".@"));
            return name == "C" || name == "POSIX" ? StandIn : name;
        }
    }
    return StandIn;
}

std::u16string Symbol(const UNumberFormat *format, UNumberFormatSymbol symbol)
{
    UChar text[16];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = unum_getSymbol(format, symbol, text, 16, &status);
    return U_SUCCESS(status) ? std::u16string(text, length) : std::u16string();
}

bool HasNegativePrefix(const UNumberFormat *format)
{
    UChar text[16];
    UErrorCode status = U_ZERO_ERROR;
    return unum_getTextAttribute(format, UNUM_NEGATIVE_PREFIX, text, 16, &status) > 0;
}

// Whether ICU doesn't know the requested locale and uses the data of its root locale instead.
bool IsStandIn(const UNumberFormat *format)
{
    UErrorCode status = U_ZERO_ERROR;
    const char *const name = unum_getLocaleByType(format, ULOC_VALID_LOCALE, &status);
    return U_FAILURE(status) || name == nullptr || *name == '\0' || std::string_view(name) == "root";
}

std::optional<LocaleConventions> ReadConventions(const std::string &name)
{
    UErrorCode status = U_ZERO_ERROR;
    // Numbers are formatted in ASCII digits, so take the separators that belong to these: Arabic, Persian and
    // other locales have different ones for their own digits.
    const std::string withLatinDigits = name + (name.find('@') == name.npos ? "@" : ";") + "numbers=latn";
    const std::unique_ptr<UNumberFormat, void (*)(UNumberFormat *)> format(
        unum_open(UNUM_DECIMAL, nullptr, 0, withLatinDigits.c_str(), nullptr, &status),
        [](UNumberFormat *f) { unum_close(f); });
    if (U_FAILURE(status) || (!name.empty() && IsStandIn(format.get())))
    {
        return std::nullopt;
    }
    LocaleConventions conventions;
    conventions.decimalSeparator = Symbol(format.get(), UNUM_DECIMAL_SEPARATOR_SYMBOL);
    conventions.thousandsSeparator = Symbol(format.get(), UNUM_GROUPING_SEPARATOR_SYMBOL);
    conventions.negativeSign = Symbol(format.get(), UNUM_MINUS_SIGN_SYMBOL);
    if (unum_getAttribute(format.get(), UNUM_GROUPING_USED))
    {
        const int further = unum_getAttribute(format.get(), UNUM_SECONDARY_GROUPING_SIZE);
        conventions.firstGroup = unum_getAttribute(format.get(), UNUM_GROUPING_SIZE);
        conventions.furtherGroups = further > 0 ? further : conventions.firstGroup;
    }
    conventions.signBehind = !HasNegativePrefix(format.get());
    return conventions;
}

std::optional<LocaleConventions> ConventionsByName(const std::string &name)
{
    static std::mutex lock;
    static std::map<std::string, std::optional<LocaleConventions>> known;

    const std::lock_guard guard(lock);
    const auto found = known.find(name);
    return found != known.end() ? found->second : known.emplace(name, ReadConventions(name)).first->second;
}
} // namespace

LocaleConventions UserConventions()
{
    const std::string name = EnvironmentLocale();
    // ICU makes something of any name; a language that Windows has no identifier for counts as unknown.
    const auto conventions = uloc_getLCID(name.c_str()) != 0 ? ConventionsByName(name) : std::nullopt;
    return conventions ? *conventions : ConventionsByName(StandIn).value();
}

std::optional<LocaleConventions> ConventionsOf(uint32_t windowsId)
{
    if (windowsId == InvariantLocale)
    {
        return ConventionsByName("");
    }
    char name[ULOC_FULLNAME_CAPACITY];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = uloc_getLocaleForLCID(windowsId, name, sizeof(name), &status);
    if (U_FAILURE(status) || length == 0 || length >= static_cast<int32_t>(sizeof(name)))
    {
        return std::nullopt;
    }
    return ConventionsByName(name);
}
