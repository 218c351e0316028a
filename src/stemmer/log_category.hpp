#ifndef DIALOG_STEMMER_LOG_CATEGORY_HPP
#define DIALOG_STEMMER_LOG_CATEGORY_HPP

#include "ku/log.hpp"

namespace ZQ::Dialog {

// The library's log category "LibStemmer", registered when the library loads.
extern ku::log::Category* const logCategory;

}  // namespace ZQ::Dialog

#endif  // DIALOG_STEMMER_LOG_CATEGORY_HPP
