#include "tests/support/puppet/stage.h"

namespace puppet {

Stage& TheStage() {
    static Stage stage;
    return stage;
}

}  // namespace puppet
