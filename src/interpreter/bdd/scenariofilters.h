#pragma once

#include <memory>
#include <string>
#include <vector>

#include "interpreter/bdd/filterinterface.h"

namespace Tamrix {

/// Has this tag.
class SingleTagFilter final : public FilterInterface {
public:
    explicit SingleTagFilter(std::string tag) : m_tag(std::move(tag)) {}
    bool shouldExecuteWithTags(std::vector<std::string> tags) override;

private:
    std::string m_tag;
};

/// Has any tag.
class TaggedFilter final : public FilterInterface {
public:
    bool shouldExecuteWithTags(std::vector<std::string> tags) override { return !tags.empty(); }
};

/// The question of this number, counted from 0.
class ScenarioIndexFilter final : public FilterInterface {
public:
    explicit ScenarioIndexFilter(unsigned wanted) : m_wanted(wanted) {}
    bool shouldExecuteWithTags(std::vector<std::string>) override {
        return m_counter++ == m_wanted;
    }

private:
    unsigned m_wanted;
    unsigned m_counter = 0;
};

class NegationFilter final : public FilterInterface {
public:
    explicit NegationFilter(std::unique_ptr<FilterInterface> child) : m_child(std::move(child)) {}
    bool shouldExecuteWithTags(std::vector<std::string> tags) override {
        return !m_child->shouldExecuteWithTags(std::move(tags));
    }

private:
    std::unique_ptr<FilterInterface> m_child;
};

/// Holds when one of its children does; those behind it are not asked. Without children it never
/// holds.
class AnyFilter final : public FilterInterface {
public:
    void add(std::unique_ptr<FilterInterface> child) { m_children.push_back(std::move(child)); }
    bool shouldExecuteWithTags(std::vector<std::string> tags) override;

private:
    std::vector<std::unique_ptr<FilterInterface>> m_children;
};

/// Fails when one of its children does; those behind it are not asked. Without children it always
/// holds.
class AllFilter final : public FilterInterface {
public:
    void add(std::unique_ptr<FilterInterface> child) { m_children.push_back(std::move(child)); }
    bool shouldExecuteWithTags(std::vector<std::string> tags) override;

private:
    std::vector<std::unique_ptr<FilterInterface>> m_children;
};

}  // namespace Tamrix
