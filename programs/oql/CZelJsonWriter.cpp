#include "programs/oql/CZelJsonWriter.h"

#include "programs/oql/CZelResult.h"
#include "programs/oql/CZelShellOutput.h"
#include "programs/oql/ZelValueText.h"

namespace {

void appendRow(std::string &out, const CZelRecord &row) {
    out += '{';
    const CZelVBList *values = row.RRVbIterator();
    for (const CZelVarBind *value = values->RVBLHead(); value != nullptr; value = values->RVBLGetNext(value)) {
        if (value != values->RVBLHead())
            out += ',';
        ZelAppendJsonString(out, value->RVBName().RATextView());
        out += ':';
        ZelAppendJson(out, value->RVBValue());
    }
    out += '}';
}

std::string reportsOf(const std::vector<SZelReport> &reports) {
    std::string out = "\"reports\":[";
    for (const SZelReport &report : reports) {
        out += &report == &reports.front() ? "" : ",";
        out.append("{\"code\":").append(std::to_string(report.m_code)).append(",\"text\":");
        ZelAppendJsonString(out, report.m_text);
        out += '}';
    }
    return out + "]";
}

}  // namespace

void CZelJsonWriter::Write(CZelResult &result, const char * /*statement*/, const CZelStore & /*store*/) {
    m_output.Write("{\"status\":" + std::to_string(result.m_status) + ",\"rows\":[");
    std::string text;
    for (const std::unique_ptr<CZelRecord> &row : result.Rows()) {
        text = &row == &result.Rows().front() ? "" : ",";
        appendRow(text, *row);
        m_output.Write(text);
    }
    m_output.Write("]," + reportsOf(result.m_reports) + "}\n");
}
