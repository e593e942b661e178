#include "replay_core/motion/motion.h"

#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace replay {

std::vector<std::string> UniqueJointNames(const Motion& motion) {
    std::unordered_set<std::string> taken;
    for (const Joint& joint : motion.joints)
        taken.insert(joint.name);

    std::unordered_map<std::string_view, std::size_t> lastNumber;  // by the capture's own name
    std::vector<std::string> names;
    names.reserve(motion.joints.size());
    for (const Joint& joint : motion.joints) {
        std::string name = joint.name;
        const auto [last, isFirst] = lastNumber.try_emplace(joint.name, 1);
        if (!isFirst) {
            do {
                name = joint.name + "_" + std::to_string(++last->second);
            } while (!taken.insert(name).second);
        }
        names.push_back(std::move(name));
    }
    return names;
}

}  // namespace replay
