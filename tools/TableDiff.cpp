#include "tools/TableDiff.h"

#include "tools/TableView.h"

#include <map>

namespace {

using FieldMap = std::map<std::uint32_t, TableField>;

FieldMap byKey(std::vector<TableField> const & fields) {
    FieldMap map;
    for (TableField const & field : fields)
        map.emplace(field.key, field);
    return map;
}

class Comparison {
public:
    Comparison(BinaryConfig & first, BinaryConfig & second, NameList const & names)
        : first(first), second(second), names(names) {}

    // Compares the tables on which the cursors stand.
    void Compare(std::string const & prefix) {
        std::vector<TableField> const firstFields = FieldsOf(first);
        std::vector<TableField> const secondFields = FieldsOf(second);
        FieldMap const firstByKey = byKey(firstFields);
        FieldMap const secondByKey = byKey(secondFields);
        for (TableField const & field : firstFields) {
            auto const other = secondByKey.find(field.key);
            if (other == secondByKey.end())
                add(prefix + names.Label(field.key), FieldText(field), "missing");
            else
                compareField(field, other->second, prefix + names.Label(field.key));
        }
        for (TableField const & field : secondFields)
            if (!firstByKey.contains(field.key))
                add(prefix + names.Label(field.key), "missing", FieldText(field));
    }

    std::vector<std::string> differences;

private:
    void compareField(TableField const & field, TableField const & other, std::string const & path) {
        bool const bothTables = field.IsTable() && other.IsTable();
        if (field.type != other.type || (!bothTables && FieldText(field) != FieldText(other)))
            add(path, FieldText(field), FieldText(other));
        if (!bothTables)
            return;
        first.TablePush(field.key);
        second.TablePush(field.key);
        if (field.type == BCTypes::TableUnsorted && other.type == BCTypes::TableUnsorted)
            compareOrder(path);
        Compare(path + ".");
        first.TablePop();
        second.TablePop();
    }

    // Only the fields that both tables have can stand in another order.
    void compareOrder(std::string const & path) {
        std::string const order = sharedOrder(first, second);
        std::string const otherOrder = sharedOrder(second, first);
        if (order != otherOrder)
            add(path, "order " + order, "order " + otherOrder);
    }

    std::string sharedOrder(BinaryConfig const & table, BinaryConfig const & other) const {
        FieldMap const otherFields = byKey(FieldsOf(other));
        std::string order;
        for (TableField const & field : FieldsOf(table))
            if (otherFields.contains(field.key))
                order += (order.empty() ? "" : ", ") + names.Label(field.key);
        return order;
    }

    void add(std::string const & path, std::string const & value, std::string const & other) {
        differences.push_back(path + ": " + value + " | " + other);
    }

    BinaryConfig & first;
    BinaryConfig & second;
    NameList const & names;
};

} // namespace

std::vector<std::string> DiffTables(BinaryConfig & first, BinaryConfig & second, NameList const & names) {
    Comparison comparison(first, second, names);
    comparison.Compare("");
    return comparison.differences;
}
