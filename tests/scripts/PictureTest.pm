# SPDX-License-Identifier: Apache-2.0
# What the tests of pictures share: reading what the renderer writes.
package PictureTest;
use strict;
use warnings;
use Compress::Zlib ();
use Exporter 'import';

our @EXPORT_OK = qw(picture difference);

# Reads the bytes of a PNG as the renderer writes it: width, height, rows, their number being less than
# the height where the picture was cut. A row is a reference to its bytes, red, green and blue.
sub picture {
	my ($bytes) = @_;
	substr($bytes, 0, 8) eq "\x89PNG\r\n\x1a\n" or die 'no PNG';
	my $packed = '';
	for (my $at = 8; $at + 12 <= length $bytes;) {
		my ($length, $kind) = unpack 'N a4', substr $bytes, $at, 8;
		$packed .= substr $bytes, $at + 8, $length if $kind eq 'IDAT';
		$at += 12 + $length;
	}
	my ($width, $height) = unpack 'N N', substr $bytes, 16, 8;
	my ($unpacker) = Compress::Zlib::inflateInit();
	my ($plain) = $unpacker->inflate($packed);
	my @rows;
	for (my $at = 0; $at + 3 * $width < length $plain; $at += 3 * $width + 1) {
		my ($filter, @row) = unpack 'C*', substr $plain, $at, 3 * $width + 1;
		$filter <= 1 or die "a row has the filter $filter";
		if ($filter == 1) {
			$row[$_] = ($row[$_] + $row[$_ - 3]) & 255 for 3 .. $#row;
		}
		push @rows, \@row;
	}
	return ($width, $height, \@rows);
}

# How far two pictures of one size are apart: the largest difference of a value, and the mean of all. Nothing
# where the sizes differ or a picture was cut.
sub difference {
	my ($one, $other) = @_;
	my ($width, $height, $rows) = picture($one);
	my ($width2, $height2, $rows2) = picture($other);
	return if $width != $width2 || $height != $height2 || @$rows != $height || @$rows2 != $height;
	my ($most, $sum) = (0, 0);
	for my $y (0 .. $height - 1) {
		for my $i (0 .. $#{ $rows->[$y] }) {
			my $apart = abs($rows->[$y][$i] - $rows2->[$y][$i]);
			$sum += $apart;
			$most = $apart if $apart > $most;
		}
	}
	return ($most, $sum / (3 * $width * $height));
}

1;
