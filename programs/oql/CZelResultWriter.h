// Writes what statements gave, one after another, in one format.
//
//   table  columns for people, and how many rows; one line per row whatever is in it
//   line   a line per value, for wide rows
//   csv    RFC 4180: CR LF, a header for each result; null is an empty field, an empty text ""
//   json   a line per statement, with status, rows and reports
//   oql    a line per row: an object literal that OQL reads back
//
// Only json writes something for a statement that gives no rows.
#pragma once

#include <memory>
#include <string>
#include <string_view>

class CZelResult;
class CZelShellOutput;
class CZelStore;

enum class EZelFormat { TABLE, LINE, CSV, JSON, OQL };

// False for a word that names none; `format` stays.
bool ZelFormatNamed(std::string_view name, EZelFormat &format);

class CZelResultWriter {
public:
    virtual ~CZelResultWriter() = default;

    // The statement is null for what a command of the shell gives. The result's rows may be rearranged.
    virtual void Write(CZelResult &result, const char *statement, const CZelStore &store) = 0;

    static std::unique_ptr<CZelResultWriter> Make(EZelFormat format, CZelShellOutput &output);

protected:
    explicit CZelResultWriter(CZelShellOutput &output) : m_output(output) {}

    CZelShellOutput &m_output;
};
