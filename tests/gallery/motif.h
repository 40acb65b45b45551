#pragma once

#include <QImage>

namespace gallery {

/// What a camera might see, painted: houses, gardens and rooms that differ by number, the same
/// picture for the same number each time.
QImage motif(int number, QSize size);

} // namespace gallery
