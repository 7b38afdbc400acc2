/* The least work that loads an Intel HEX file: the file in one read, a digit table, the checksum of
 * every record, data appended to the island that it continues or to a new one. Nothing is sorted
 * and overlaps are not detected. Prints the number of data bytes: minimal_hex FILE */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <stdnoreturn.h>
#include <string.h>

struct island {
    uint32_t address;
    size_t size;
    size_t room;
    unsigned char* bytes;
};

enum { most_islands = 1 << 17 };

static struct island islands[most_islands];
static size_t island_count;
static unsigned char digit[256];

static noreturn void fail(const char* message)
{
    (void)fprintf(stderr, "%s\n", message);
    exit(1);
}

static void* checked(void* memory)
{
    if (memory == NULL) {
        fail("out of memory");
    }
    return memory;
}

static void fill_digit_table(void)
{
    memset(digit, 0xFF, sizeof digit);
    for (int i = 0; i < 10; ++i) {
        digit['0' + i] = (unsigned char)i;
    }
    for (int i = 0; i < 6; ++i) {
        digit['A' + i] = digit['a' + i] = (unsigned char)(10 + i);
    }
}

static char* read_whole(const char* path, size_t* size)
{
    FILE* file = fopen(path, "rb");
    if (file == NULL) {
        fail("cannot open the file");
    }
    const long end = fseek(file, 0, SEEK_END) == 0 ? ftell(file) : -1;
    if (end < 0 || fseek(file, 0, SEEK_SET) != 0) {
        fail("cannot find the size of the file");
    }
    *size = (size_t)end;
    char* text = checked(malloc(*size + 1));
    if (fread(text, 1, *size, file) != *size) {
        fail("cannot read the file");
    }
    (void)fclose(file);
    text[*size] = '\0';
    return text;
}

static void store(uint32_t address, const unsigned char* data, size_t count)
{
    struct island* last = island_count > 0 ? &islands[island_count - 1] : NULL;
    if (last == NULL || address != last->address + last->size) {
        if (island_count == most_islands) {
            fail("too many islands");
        }
        last = &islands[island_count++];
        *last = (struct island){address, 0, 0, NULL};
    }
    if (last->size + count > last->room) {
        last->room = 2 * last->room + count;
        last->bytes = checked(realloc(last->bytes, last->room));
    }
    memcpy(last->bytes + last->size, data, count);
    last->size += count;
}

/* Decodes the record after a colon; returns where it ends. */
static const char* take_record(const char* at, const char* end, unsigned char* bytes)
{
    unsigned int count = 5;
    unsigned char sum = 0;
    for (unsigned int i = 0; i < count; ++i, at += 2) {
        if (at + 2 > end) {
            fail("cut record");
        }
        const unsigned char high = digit[(unsigned char)at[0]];
        const unsigned char low = digit[(unsigned char)at[1]];
        if ((high | low) > 15) {
            fail("not a hexadecimal digit");
        }
        bytes[i] = (unsigned char)(high << 4 | low);
        sum = (unsigned char)(sum + bytes[i]);
        if (i == 0) {
            count += bytes[0];
        }
    }
    if (sum != 0) {
        fail("wrong checksum");
    }
    return at;
}

static size_t load(const char* text, size_t size)
{
    const char* const end = text + size;
    unsigned char record[5 + 255] = {0};
    uint32_t upper = 0;
    size_t total = 0;
    for (const char* at = text; (at = memchr(at, ':', (size_t)(end - at))) != NULL;) {
        at = take_record(at + 1, end, record);
        if (record[3] == 0 && record[0] != 0) {
            store(upper + (uint32_t)(record[1] << 8 | record[2]), record + 4, record[0]);
            total += record[0];
        } else if (record[3] == 4) {
            upper = (uint32_t)record[4] << 24 | (uint32_t)record[5] << 16;
        } else if (record[3] == 1) {
            break;
        }
    }
    return total;
}

int main(int argc, char** argv)
{
    if (argc != 2) {
        fail("usage: minimal_hex FILE");
    }
    fill_digit_table();
    size_t size = 0;
    char* text = read_whole(argv[1], &size);
    printf("%zu\n", load(text, size));
    free(text);
    return 0;
}
