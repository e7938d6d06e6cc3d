#!/usr/bin/perl
# SPDX-License-Identifier: Apache-2.0
# Writes an SGI image as the desk reads it: run-length encoded, one byte a channel, three or four channels.
#
#     png-to-sgi.pl SOURCE.svg < PICTURE.png > PICTURE.sgi
#
# The picture is a PNG with 8 bits a channel, RGB or RGBA, without interlacing, which is what rsvg-convert
# writes. One without any transparency gets three channels. The name field of the SGI header takes the name and
# a digest of SOURCE, so that a test can tell a picture that is older than its drawing. The same picture gives
# the same bytes.
use strict;
use warnings;
use Compress::Zlib 'uncompress';
use Digest::MD5;

my $kMostRun = 127;         # pixels that one count byte can tell
my $kLeastRun = 3;          # shorter runs cost less when they are copied
my $kMostRowBytes = 4096;   # what the reader takes for one channel of one row
my $kHeaderBytes = 512;

@ARGV == 1 or die "usage: png-to-sgi.pl SOURCE.svg < PICTURE.png > PICTURE.sgi\n";
my ($source) = @ARGV;
binmode STDIN;
binmode STDOUT;
my ($width, $height, $channels, $rows) = read_png(do { local $/; <STDIN> });
($channels, $rows) = (3, [map { s/(...)./$1/gsr } @$rows]) if $channels == 4 && is_opaque($rows);
print sgi($width, $height, $channels, $rows, label($source));

# The rows from the top down, as strings of interleaved bytes.
sub read_png {
	my ($png) = @_;
	substr($png, 0, 8) eq "\x89PNG\r\n\x1a\n" or die "$source: no PNG came in\n";
	my ($header, $data) = ('', '');
	for (my $at = 8; $at + 8 <= length $png;) {
		my ($size, $kind) = unpack 'N a4', substr $png, $at, 8;
		$header = substr $png, $at + 8, $size if $kind eq 'IHDR';
		$data .= substr $png, $at + 8, $size if $kind eq 'IDAT';
		$at += $size + 12;
	}
	my ($width, $height, $bits, $kind, undef, undef, $interlaced) = unpack 'N N C5', $header;
	my $channels = { 2 => 3, 6 => 4 }->{ $kind // '' };
	$channels && $bits == 8 && !$interlaced or die "$source: not a kind of PNG that is read\n";
	my $bytes = uncompress($data) // die "$source: the PNG is damaged\n";
	return ($width, $height, $channels, unfiltered($bytes, $width * $channels, $height, $channels));
}

sub unfiltered {
	my ($bytes, $size, $height, $step) = @_;
	my @rows;
	my @above = (0) x $size;
	for my $y (0 .. $height - 1) {
		my ($filter, @row) = unpack 'C*', substr $bytes, $y * ($size + 1), $size + 1;
		for my $x ($filter ? 0 .. $size - 1 : ()) {
			my ($left, $corner) = $x < $step ? (0, 0) : ($row[$x - $step], $above[$x - $step]);
			my $guess = $filter == 1 ? $left
				: $filter == 2 ? $above[$x]
				: $filter == 3 ? ($left + $above[$x]) >> 1
				: paeth($left, $above[$x], $corner);
			$row[$x] = ($row[$x] + $guess) & 255;
		}
		push @rows, pack 'C*', @row;
		@above = @row;
	}
	return \@rows;
}

# Of the three neighbours, the one nearest to left + above - corner.
sub paeth {
	my ($left, $above, $corner) = @_;
	my ($to_left, $to_above) = (abs($above - $corner), abs($left - $corner));
	my $to_corner = abs($left + $above - 2 * $corner);
	return $left if $to_left <= $to_above && $to_left <= $to_corner;
	return $to_above <= $to_corner ? $above : $corner;
}

sub is_opaque {
	my ($rows) = @_;
	for (@$rows) { return 0 if /\A(?:...\xFF)*?...[^\xFF]/s }
	return 1;
}

sub label {
	my ($path) = @_;
	open my $file, '<:raw', $path or die "$path: $!\n";
	my $digest = Digest::MD5->new->addfile($file)->hexdigest;
	return ($path =~ s{.*/}{}r) . " $digest";
}

# Rows that are alike stand in the file once.
sub sgi {
	my ($width, $height, $channels, $rows, $label) = @_;
	my (@starts, @lengths, %places);
	my $pixels = '';
	my $first = $kHeaderBytes + 2 * 4 * $height * $channels;
	for my $channel (0 .. $channels - 1) {
		for my $row (reverse @$rows) {
			my $packed = packed(join '', map { substr $_, $channel, 1 } unpack "(a$channels)*", $row);
			length $packed <= $kMostRowBytes or die "$source: a row does not fit\n";
			if (!exists $places{$packed}) {
				$places{$packed} = $first + length $pixels;
				$pixels .= $packed;
			}
			push @starts, $places{$packed};
			push @lengths, length $packed;
		}
	}
	my $header = pack 'n C C n4 N2 N a80 N', 474, 1, 1, 3, $width, $height, $channels, 0, 255, 0, $label, 0;
	return pack("a$kHeaderBytes", $header) . pack('N*', @starts, @lengths) . $pixels;
}

# One channel of one row, with its closing 0.
sub packed {
	my ($row) = @_;
	my ($packed, $copied) = ('', '');
	my $flush = sub {
		$packed .= pack('C', 0x80 | length $_) . $_ for unpack "(a$kMostRun)*", $copied;
		$copied = '';
	};
	while ($row =~ /\G(.)(\1*)/gs) {
		my $count = 1 + length $2;
		if ($count < $kLeastRun) {
			$copied .= $1 x $count;
			next;
		}
		$flush->();
		for (; $count > 0; $count -= $kMostRun) {
			$packed .= pack 'C a', $count < $kMostRun ? $count : $kMostRun, $1;
		}
	}
	$flush->();
	return "$packed\0";
}
