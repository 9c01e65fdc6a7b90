// The exchange of one command with a reader, and what its reply means.
#pragma once

#include "acg/platform/AnsiText.h"
#include "acg/reader/CommandData.h"
#include "acg/reader/ReaderDLL.h"

#include <string_view>

namespace acg
{

/// Sends a command with its data text. A status letter in place of data is failure -5.
Failure Exchange(ReaderDLL& library, ReaderHandle reader, const char* command, const CommandData& data,
                 ByteString& reply);

/// What the outcome of exchanging "login" means: -7 if the login didn't succeed, -6 if the reader answered
/// with data. readerType: in lower case.
///
/// The good reply to "login" is the status letter "L"; a reply of data is a failure of the reader. One type
/// of reader answers otherwise: there the next block command shows whether the login succeeded.
Failure JudgeLogin(const Failure& exchange, std::wstring_view readerType);

/// The type, in lower case, of the reader whose reply to "login" says nothing.
inline constexpr std::wstring_view ReaderWithSilentLogin = L"multiiso 1.0";

} // namespace acg
