#pragma once

enum class WmiAnswer
{
    NoRows,
    Rows,
    Failed, ///< There was no answer, the query was refused, or it took too long.
};

/// Asks WMI whether a query has any rows. Waits at most 2 minutes for the service and at most 1 minute for the first
/// row. COM may be initialised on the calling thread in any way or not at all; its state is unchanged. The process's
/// COM security is unchanged: the query runs with the caller's own rights.
/// @param nameSpace  Such as "root\cimv2".
/// @param query      In the query language of the service (WQL).
[[nodiscard]] WmiAnswer AskWmi(const wchar_t* nameSpace, const wchar_t* query);
