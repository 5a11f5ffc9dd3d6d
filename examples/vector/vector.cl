// Sums the values of each work-group; the group's size is a power of two and
// `partial` has room for one value a work-item.
__kernel void sumGroups(__global float *sums, __global const float *values,
                        __local float *partial) {
  const size_t item = get_local_id(0);
  partial[item] = values[get_global_id(0)];
  for (size_t pairs = get_local_size(0) / 2; pairs > 0; pairs /= 2) {
    barrier(CLK_LOCAL_MEM_FENCE);
    if (item < pairs)
      partial[item] += partial[item + pairs];
  }
  if (item == 0)
    sums[get_group_id(0)] = partial[0];
}

// The same groups with a quarter of the work-items, so each begins with the sum
// of four neighbours and two rounds with their barriers are saved.
__kernel void sumGroups_coarsed_l0S4(__global float *sums,
                                     __global const float *values,
                                     __local float *partial) {
  const size_t item = get_local_id(0);
  const float4 four = vload4(get_global_id(0), values);
  partial[item] = (four.x + four.y) + (four.z + four.w);
  for (size_t pairs = get_local_size(0) / 2; pairs > 0; pairs /= 2) {
    barrier(CLK_LOCAL_MEM_FENCE);
    if (item < pairs)
      partial[item] += partial[item + pairs];
  }
  if (item == 0)
    sums[get_group_id(0)] = partial[0];
}

// Deals the cards to as many players as a work-group has work-items: the hand of
// player p begins at p times the number of groups, with one card from each.
__kernel void deal(__global uint *hands, __global const uint *cards) {
  hands[get_local_id(0) * get_num_groups(0) + get_group_id(0)] =
      cards[get_global_id(0)];
}

// One work-group does the work of four, so its cards lie side by side in a hand.
// How long a hand is depends on the groups there were before coarsening, which
// are in `groups`; get_num_groups would tell a quarter of that.
__kernel void deal_coarsed_g0S4(__global uint *hands,
                                __global const uint *cards, uint4 groups) {
  const size_t player = get_local_id(0);
  const size_t players = get_local_size(0);
  const size_t firstGroup = 4 * get_group_id(0);
  __global const uint *from = cards + firstGroup * players + player;
  const uint4 four = (uint4)(from[0], from[players], from[2 * players],
                             from[3 * players]);
  vstore4(four, 0, hands + player * groups.x + firstGroup);
}
