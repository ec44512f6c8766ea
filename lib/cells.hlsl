// Iteration over the cells around a point.

// Each call advances o to the next offset, -r to r in each component, x fastest, and returns whether there is one. So
// one flat loop serves every dimension and contains its body once.
bool cell_next1(inout int o, int r) {
  o += 1;
  return o <= r;
}

bool cell_next2(inout int2 o, int r) {
  if (cell_next1(o.x, r)) return true;
  o.x = -r;
  return cell_next1(o.y, r);
}

bool cell_next3(inout int3 o, int r) {
  if (cell_next1(o.x, r)) return true;
  o.x = -r;
  return cell_next2(o.yz, r);
}

// Searches for a nearest point visit cells from the inside out, so that farther ones can be skipped: offsets 0, -1, 1
// for i = 0, 1, 2.
int cell_offset(uint i) {
  return int(i >> 1) - int(i & 1u);
}

// The number of rows of cells along x, with cells at offsets -reach to reach.
uint cell_rows1(int reach) {
  return 1u;
}

uint cell_rows2(int reach) {
  return 2u * uint(reach) + 1u;
}

uint cell_rows3(int reach) {
  return cell_rows2(reach) * cell_rows2(reach);
}

uint cell_rows4(int reach) {
  return cell_rows2(reach) * cell_rows3(reach);
}

// The offset of the middle cell of a row; y advances fastest.
int2 cell_line2(uint row, int reach) {
  return int2(0, int(row) - reach);
}

int3 cell_line3(uint row, int reach) {
  uint n = cell_rows2(reach);
  return int3(0, int2(row % n, row / n) - reach);
}

int4 cell_line4(uint row, int reach) {
  uint n = cell_rows2(reach);
  return int4(0, int3(row % n, row / n % n, row / (n * n)) - reach);
}

// The same from the inside out, for a reach of 1: 3, 9 or 27 rows.
int2 cell_row2(uint row) {
  return int2(0, cell_offset(row));
}

int3 cell_row3(uint row) {
  return int3(0, cell_offset(row % 3u), cell_offset(row / 3u));
}

int4 cell_row4(uint row) {
  return int4(0, cell_offset(row % 3u), cell_offset(row / 3u % 3u), cell_offset(row / 9u));
}

// A key for offsets from -1 to 1, which orders cells with x fastest, then y, z, w; and its inverse.
int cell_key2(int2 o) {
  return o.x + 4 * o.y;
}

int cell_key3(int3 o) {
  return o.x + 4 * o.y + 16 * o.z;
}

int cell_key4(int4 o) {
  return o.x + 4 * o.y + 16 * o.z + 64 * o.w;
}

int cell_of_key1(int key) {
  return key;
}

// Adding 85 = 1 + 4 + 16 + 64 makes each pair of bits an offset plus one.
// @each DIM 2 3 4
intDIM cell_of_keyDIM(int key) {
  return (intDIM)(int4(key + 85, (key + 85) >> 2, (key + 85) >> 4, (key + 85) >> 6) & 3) - 1;
}
