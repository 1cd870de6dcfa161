/* Columns of a picture, of which there may be any number at first. */
#ifndef MVK_TOOLS_COLUMNS_H
#define MVK_TOOLS_COLUMNS_H

#include <cstddef>
#include <span>
#include <vector>

namespace mvk {

/* Takes columns of values one after another, and keeps a bounded number: neighbours are
 * merged, in groups of equal size, when there are more. A group has the greatest of the
 * values in each row, so that nothing short is lost. */
class Columns {
 public:
  Columns(std::size_t rows, std::size_t most);

  void add(std::span<const float> column);

  /* Columns in a group; the last group may have fewer. */
  std::size_t group() const { return group_; }

  /* Groups. */
  std::size_t count() const { return values_.size() / rows_; }

  /* Group after group. */
  const std::vector<float> &values() const { return values_; }

 private:
  void merge_pairs();

  std::size_t rows_;
  std::size_t most_;  // even
  std::size_t group_ = 1;
  std::size_t added_ = 0;
  std::vector<float> values_;
};

}  // namespace mvk

#endif
