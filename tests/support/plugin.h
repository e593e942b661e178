#pragma once

#include <gtest/gtest.h>

#include "tvl/core_interface.h"

// What a Core brings along: a plug-in that owns nodes, and has state to store with them.
class Plugin final : public TVL::CoreElement {
  public:
    explicit Plugin(std::string name) : record{std::move(name)} { plugin = &record; }

    std::vector<int> ListExtensions() override { return extensions; }
    std::intptr_t HandleExtension(int id, void* argument) override {
        if (id == 43) {
            EXPECT_EQ(argument, nullptr);
            if (onDeletion) onDeletion();
        }
        if (id != 56) return 0;
        ++timesAsked;
        for (const std::string& part : parts)
            static_cast<XMLNode*>(argument)->AddChild(XMLNode(part));
        if (onAsked) onAsked();
        return 0;
    }

    std::vector<int> extensions = {43, 56};
    std::function<void()> onDeletion;  // the user deletes nodes of this plug-in
    std::vector<std::string> parts;    // its state: elements "masternode"
    int timesAsked = 0;                // for its state
    std::function<void()> onAsked;

  private:
    TVL::PluginRecord record;
};
