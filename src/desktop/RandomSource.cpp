#include "desktop/RandomSource.h"

#include <QRandomGenerator>

namespace tessara {

std::uint32_t SystemRandom::Next() {
    return QRandomGenerator::system()->generate();
}

}  // namespace tessara
