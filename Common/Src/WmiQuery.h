#pragma once

enum class WmiAnswer
{
    NoRows,
    Rows,
    Failed, ///< Nobody answered, the question was refused, or the answer took too long.
};

/// Asks the system's management service whether a query has any rows. Waits at most 2 minutes for the service and at
/// most 1 minute for the first row. COM may be initialised on the calling thread in any way or not at all; it is left
/// as it was. The process's COM security is not touched: the question is asked with the caller's own rights.
/// @param nameSpace  Such as "root\cimv2".
/// @param query      In the query language of the service (WQL).
[[nodiscard]] WmiAnswer AskWmi(const wchar_t* nameSpace, const wchar_t* query);
