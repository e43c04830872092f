// CzbFileDB::openfile on arbitrary file bytes, then a save and a read of the result.
#include <zbBase/datafiles/CzbFileDB.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    char input[] = "items_in.txt";
    char output[] = "items_out.txt";
    FILE* file = std::fopen(input, "wb");
    if (file == nullptr) {
        return 0;
    }
    std::fwrite(data, 1, size, file);
    std::fclose(file);

    CzbFileDB db;
    db.setItem(const_cast<char*>("pre"), 1);
    if (!db.openfile(input)) {
        __builtin_trap();
    }
    db.getItemNum(const_cast<char*>("pos"));
    db.savefile(output);
    CzbFileDB back(db);
    back.openfile(output);
    std::remove(input);
    std::remove(output);
    return 0;
}
