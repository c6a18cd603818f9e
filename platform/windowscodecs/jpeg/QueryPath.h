// A metadata query's path, "/app1/ifd/{ushort=271}", taken apart.
#pragma once

#include "com/WideText.h"

#include <vector>

struct QueryItem
{
    enum class Kind
    {
        Name,  // app1, dc:title; also {str=Caption}
        Number // {ushort=271}
    };
    Kind ItemKind = Kind::Name;
    UINT Index = 0; // of "[1]app1"
    WideText Text;  // of a Name; without the "<xmpbag>" in front, which repeats what the schema says
    WORD Number = 0;
};

using QueryPath = std::vector<QueryItem>;

// Throws WINCODEC_ERR_INVALIDQUERYREQUEST for what is no path.
QueryPath ParseQueryPath(WideView text);
