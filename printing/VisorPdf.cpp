#include "VisorPdf.h"

namespace cajaplex {

TVisorPdfF::TVisorPdfF(const QString&, QWidget* padre) : QWidget(padre) {}

} // namespace cajaplex
