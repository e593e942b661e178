#include "support/puppet/stage.h"

namespace puppet {

Stage& TheStage() {
    static Stage stage;
    return stage;
}

}  // namespace puppet
