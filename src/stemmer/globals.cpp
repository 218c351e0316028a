// The library's load-time state. All of it lives in this one file so that it is
// built in a fixed order: the log category, then sep, charsep and rx.
#include "stemmer/log_category.hpp"
#include "stemmer/stemmer.hpp"

namespace ZQ::Dialog {

ku::log::Category* const logCategory = ku::log::addCategory("LibStemmer");

boost::char_separator<char> sep(" ", "", boost::drop_empty_tokens);
// Built from "" on purpose: the default-constructed separator would split at
// spaces and punctuation, while this one keeps any input whole.
boost::char_separator<char> charsep("", "", boost::drop_empty_tokens);
QRegExp rx(QStringLiteral("[ ']"), Qt::CaseSensitive, QRegExp::RegExp);

}  // namespace ZQ::Dialog
