#include "host/formats/ContactExport.h"

#include "host/formats/Charset.h"
#include "host/formats/ExportTable.h"
#include "host/formats/LdifReader.h"
#include "host/formats/VCardReader.h"

#include <utility>

namespace host {

namespace {

ReadExport readCards(std::string_view bytes, const std::string& file, const ExportOptions& options,
                     const TakeExported& take) {
    Utf8Text text;
    readCardsAsUtf8(bytes, options.charset, text);
    VCardReader reader(text.text, file, options.charset);
    while (reader.next()) {
        take(reader.contact(), reader.line());
    }
    return {"vCard", text.charset, {}, {reader.problems(), reader.error()}};
}

} // namespace

ReadExport readExport(std::string_view bytes, const std::string& file, const ExportOptions& options,
                      const TakeExported& take) {
    Utf8Text text;
    readAsUtf8(bytes, options.charset, text);
    if (isVCard(text.text)) {
        return readCards(bytes, file, options, take);
    }
    ReadExport read = isLdif(text.text) ? readLdif(text.text, file, take) : readTable(text.text, file, options, take);
    read.charset = std::move(text.charset);
    return read;
}

} // namespace host
