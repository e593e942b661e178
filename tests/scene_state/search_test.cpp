// The searches are by hash; here they are by going through everything, as they are defined.

#include <algorithm>
#include <random>
#include <string>

#include "tests/scene_state/state_test.h"

namespace {

using TaggedNodes = std::vector<std::pair<std::string, XMLNode>>;  // host name and tag
using Masters = std::vector<const XMLNode*>;

class Search : public StateTest {
  protected:
    std::mt19937 random{20251124};

    int Draw(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }
    static std::string Letter(int index) { return std::string(1, static_cast<char>('a' + index)); }

    // Parents come later in the alphabet, so that there are no circles.
    std::string RandomMaster() {
        const int name = Draw(12);
        return Master(Letter(name), Draw(3) ? Letter(name + 1 + Draw(4)) : "",
                      std::to_string(Draw(5) - 2));
    }

    TaggedNodes RandomScene(int count) {
        std::vector<INode*> hosts = {nullptr};
        for (int index = 0; index < count; ++index) {
            const std::string masters = Draw(2) ? RandomMaster() + RandomMaster() : "";
            const std::string tag = Draw(4) ? Tag(Letter(Draw(3)), Letter(Draw(4)), masters) : "";
            INode* const parent = hosts[static_cast<std::size_t>(Draw(index + 1))];
            hosts.push_back(SceneNode(std::to_string(index), tag, parent));
        }
        TaggedNodes nodes;
        for (const headless::NodeView& node : headless::Nodes())
            if (node.userProperties.contains("TVL_tag"))
                nodes.emplace_back(node.name, XMLNode(node.userProperties.at("TVL_tag")));
        return nodes;
    }
};

Texts ClaimedByGoingThrough(const TaggedNodes& gathered, const TaggedNodes& inScene,
                            const std::string& plugin, const Texts& names) {
    const auto bears = [&](const XMLNode& tag, const std::string& name) {
        return tag.Child("name").Text() == plugin && tag.Child("objectname").Text() == name;
    };
    Texts claims(names.size(), "-");
    for (std::size_t index = 0; index < names.size(); ++index)
        for (const auto& [host, tag] : gathered)
            if (bears(tag, names[index])) claims[index] = host;
    for (const auto& [host, tag] : inScene) {
        std::size_t index = names.size();
        while (index > 0 && !bears(tag, names[index - 1]))
            --index;
        if (index > 0 && claims[index - 1] == "-") claims[index - 1] = host;
    }
    return claims;
}

const XMLNode* Named(const Masters& masters, const std::string& name) {
    const auto found = std::ranges::find_if(masters, [&](const XMLNode* master) {
        return master->Child("TVL_Plugin").Child("name").Text() == name;
    });
    return found == masters.end() ? nullptr : *found;
}

XMLNode Built(const Masters& masters, const XMLNode& master) {
    XMLNode built = master.Child("TVL_Plugin");
    for (int index = -2; index <= 2; ++index)
        for (const XMLNode* child : masters)
            if (Named(masters, child->Child("parent").Text()) == &master &&
                child->Child("childindex").Text() == std::to_string(index))
                built.AddChild(Built(masters, *child));
    return built;
}

std::string StateByGoingThrough(const TaggedNodes& nodes) {
    Masters masters;
    for (const auto& node : nodes)
        for (const auto& child : node.second.children)
            if (child->name == "masternode" &&
                !Named(masters, child->Child("TVL_Plugin").Child("name").Text()))
                masters.push_back(child.get());
    XMLNode state("<TVL/>");
    for (const XMLNode* master : masters)
        if (!Named(masters, master->Child("parent").Text()))
            state.AddChild(Built(masters, *master));
    return state.Write();
}

TEST_F(Search, FindsWhatGoingThroughEverythingFinds) {
    for (int scene = 0; scene < 100; ++scene) {
        const TaggedNodes nodes = RandomScene(Draw(25));
        const std::string plugin = Letter(Draw(3));
        Texts names;
        for (int count = Draw(8); count > 0; --count)
            names.push_back(Letter(Draw(5)));
        EXPECT_EQ(Claimed(plugin, names), ClaimedByGoingThrough({}, nodes, plugin, names));
        Texts claimed;
        world.Core().onCall = [&](const std::string&) { claimed = Claimed(plugin, names); };
        EXPECT_EQ(Gathered(), Texts{StateByGoingThrough(nodes)}) << "scene " << scene;
        world.Core().onCall = nullptr;
        EXPECT_EQ(claimed, ClaimedByGoingThrough(nodes, nodes, plugin, names));
        world.Session().NewScene();
    }
}

}  // namespace
