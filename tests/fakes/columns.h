#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "fakes/steps.h"
#include "kalvo/row_source.h"
#include "kalvo/table_column.h"

namespace kalvo::test {

// Cells that say what they are: "[Name]" in the header, "[Name=value]" of the field of its name, "[+Name]" in the
// totals, "[TOTAL]" for the first of them. Steps: Header, Data and Total with the column's name before a point.
class FakeColumn : public TableColumn {
 public:
  FakeColumn(std::string name, Steps& steps) : name_(std::move(name)), steps_(steps) {}

  void AppendHeader(std::string& out, Context&, Display&) override {
    out += '[' + name_;
    steps_.Do(name_ + ".Header");
    out += ']';
  }
  void AppendData(std::string& out, Context&, Display&, RowSource& row) override {
    out += '[' + name_ + '=';
    out += row.GetField(name_);
    steps_.Do(name_ + ".Data");
    out += ']';
  }
  void AppendTotal(std::string& out, Context&, Display&, RowSource&, bool& firstCell) override {
    out += firstCell ? "[TOTAL" : "[+" + name_;
    steps_.Do(name_ + ".Total");
    out += ']';
    firstCell = false;
  }

 private:
  std::string name_;
  Steps& steps_;
};

// A catalogue of such columns. Step: Column.
class FakeColumns : public ColumnCatalogue {
 public:
  Steps steps;

  void Add(std::int16_t id, std::string name) { columns_[id] = std::make_shared<FakeColumn>(std::move(name), steps); }
  void Add(std::int16_t id, std::shared_ptr<TableColumn> column) { columns_[id] = std::move(column); }

  std::shared_ptr<TableColumn> Column(std::int16_t id) override {
    steps.Do("Column", id);
    return columns_[id];
  }

 private:
  std::map<std::int16_t, std::shared_ptr<TableColumn>> columns_;
};

}  // namespace kalvo::test
