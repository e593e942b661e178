// The searches are by hash; here they are by going through everything, as they are defined.

#include <algorithm>
#include <memory>
#include <random>
#include <string>

#include "scene_state/state_test.h"

namespace {

class Search : public StateTest {
  protected:
    std::mt19937 random{20251124};

    int Draw(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }
    std::string Letter(int count) { return std::string(1, static_cast<char>('a' + Draw(count))); }

    // Parents come later in the alphabet, so that there are no circles.
    std::string RandomMaster() {
        const int name = Draw(12);
        const int parent = name + 1 + Draw(4);
        return Master(std::string(1, static_cast<char>('a' + name)),
                      Draw(3) > 0 ? std::string(1, static_cast<char>('a' + parent)) : "",
                      std::to_string(Draw(5) - 2));
    }

    void RandomScene(int count) {
        std::vector<INode*> nodes = {nullptr};
        for (int index = 0; index < count; ++index) {
            const std::string masters = Draw(2) ? RandomMaster() + RandomMaster() : "";
            const std::string tag = Draw(4) ? Tag(Letter(3), Letter(4), masters) : "";
            INode* const parent = nodes[static_cast<std::size_t>(Draw(index + 1))];
            nodes.push_back(SceneNode(std::to_string(index), tag, parent));
        }
    }
};

struct Found {
    std::string hostName;
    XMLNode tag;
};
using FoundNodes = std::vector<std::unique_ptr<Found>>;

FoundNodes TaggedNodes() {
    FoundNodes found;
    for (const headless::NodeView& view : headless::Nodes()) {
        const auto text = view.userProperties.find("TVL_tag");
        if (text == view.userProperties.end()) continue;
        found.push_back(std::make_unique<Found>());
        found.back()->hostName = view.name;
        found.back()->tag.Parse(text->second);
    }
    return found;
}

bool Bears(const Found& found, const std::string& plugin, const std::string& object) {
    return found.tag.Child("name").Text() == plugin &&
           found.tag.Child("objectname").Text() == object;
}

Texts ClaimedByGoingThrough(const FoundNodes& gathered, const FoundNodes& inScene,
                            const std::string& plugin, const Texts& names) {
    Texts claims(names.size(), "-");
    for (std::size_t index = 0; index < names.size(); ++index)
        for (const auto& node : gathered)
            if (Bears(*node, plugin, names[index])) claims[index] = node->hostName;
    for (const auto& node : inScene) {
        for (std::size_t index = names.size(); index-- > 0;) {
            if (!Bears(*node, plugin, names[index])) continue;
            if (claims[index] == "-") claims[index] = node->hostName;
            break;
        }
    }
    return claims;
}

const std::string& NameOf(const XMLNode& master) {
    return master.Child("TVL_Plugin").Child("name").Text();
}

struct Stored {
    XMLNode master;
    int parent = -1;
    int index = 0;
};

XMLNode Built(const std::vector<Stored>& all, int which) {
    XMLNode built = all[static_cast<std::size_t>(which)].master.Child("TVL_Plugin");
    for (int index = -2; index <= 2; ++index)
        for (int child = 0; child < static_cast<int>(all.size()); ++child)
            if (const Stored& stored = all[static_cast<std::size_t>(child)];
                stored.parent == which && stored.index == index)
                built.AddChild(Built(all, child));
    return built;
}

std::string StateByGoingThrough(const FoundNodes& nodes) {
    std::vector<Stored> all;
    for (const auto& node : nodes)
        for (const auto& child : node->tag.children)
            if (child->name == "masternode") all.push_back({*child});
    for (std::size_t first = 0; first < all.size(); ++first)
        for (std::size_t later = all.size() - 1; later > first; --later)
            if (NameOf(all[first].master) == NameOf(all[later].master))
                all.erase(all.begin() + static_cast<std::ptrdiff_t>(later));
    for (Stored& stored : all) {
        for (std::size_t parent = all.size(); parent-- > 0;)
            if (NameOf(all[parent].master) == stored.master.Child("parent").Text())
                stored.parent = static_cast<int>(parent);
        if (stored.parent >= 0) stored.index = std::stoi(stored.master.Child("childindex").Text());
    }
    XMLNode state("<TVL/>");
    for (std::size_t index = 0; index < all.size(); ++index)
        if (all[index].parent < 0) state.AddChild(Built(all, static_cast<int>(index)));
    return state.Write();
}

TEST_F(Search, FindsWhatGoingThroughEverythingFinds) {
    for (int scene = 0; scene < 100; ++scene) {
        RandomScene(Draw(25));
        const FoundNodes nodes = TaggedNodes();
        const std::string plugin = Letter(3);
        Texts names;
        for (int count = Draw(8); count > 0; --count)
            names.push_back(Letter(5));
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
