# SPDX-License-Identifier: Apache-2.0
# The render options of this library: what they can be, and what they ask for. A
# render and a live picture heed the same ones.

package MrayOptions;

use strict;
use warnings;

my %allowed = (
	MRAY_OBJECT => [qw(sphere torus cube vase plane)],
	MRAY_BACKGROUND => [qw(studio sky dark white)],
	MRAY_LIGHT => [qw(key sun soft rim)],
	MRAY_SAMPLES => [qw(1 2 4 9 16)],
	MRAY_VIEW => [qw(shaded clay normals coordinates alpha)],
	MRAY_SHOW => [qw(0 1)],
	MRAY_TIMES => [qw(0 1)],
);
my %defaults = (
	MRAY_SIZE => '320,240',
	MRAY_SAMPLES => '4',
	MRAY_OBJECT => 'sphere',
	MRAY_BACKGROUND => 'studio',
	MRAY_LIGHT => 'key',
	MRAY_EXPOSURE => '1',
	MRAY_VIEW => 'shaded',
	MRAY_TINT_R => '1',
	MRAY_TINT_G => '1',
	MRAY_TINT_B => '1',
	MRAY_SHOW => '1',
	MRAY_TIMES => '0',
	MRAY_REFERENCE => '',
);
# Those that the renderer knows, too; the others are obeyed by the scripts.
my @passed_on = qw(MRAY_BACKGROUND MRAY_EXPOSURE MRAY_LIGHT MRAY_OBJECT MRAY_SAMPLES MRAY_SIZE);
my @tint = qw(MRAY_TINT_R MRAY_TINT_G MRAY_TINT_B);

# Reads a file of lines: setenv KEY "value", with \\ and \" inside; an empty name
# stands for no file. Gives the options, those that it does not tell with their
# defaults, and what is wrong with them, or nothing.
sub read_file {
	my ($file) = @_;
	my %options = %defaults;
	return (\%options, '') if $file eq '';
	open my $in, '<', $file or return (\%options, "cannot read the render options $file: $!");
	while (my $line = <$in>) {
		$line =~ s/[\r\n]+$//;
		if ($line =~ /^\s*setenv\s+(\w+)\s+"((?:[^"\\]|\\.)*)"\s*$/ && exists $options{$1}) {
			my ($key, $value) = ($1, $2);
			$value =~ s/\\(.)/$1/g;
			$options{$key} = $value;
		}
	}
	close $in;
	return (\%options, check(\%options, $file));
}

# What the renderer is to be told of them, as words of its command line.
sub for_renderer {
	my ($options) = @_;
	return map { ('--' . lc(substr $_, 5), $options->{$_}) } @passed_on;
}

# The text of a shader that shows what they ask for.
sub viewed {
	my ($options, $text) = @_;
	return $text if $options->{MRAY_VIEW} eq 'shaded' && !grep { $options->{$_} != 1 } @tint;
	my $here = __FILE__ =~ m{^(.*)/}s ? $1 : '.';
	$here = "./$here" unless $here =~ m{^\.{0,2}/|^\.\.?\z};
	require "$here/MrayView.pm";
	return MrayView::of($text, @$options{ 'MRAY_VIEW', @tint });
}

sub check {
	my ($options, $file) = @_;
	my $refuse = sub {
		my ($key, $rule) = @_;
		return "$key in $file is \"$options->{$key}\"; it must be $rule";
	};
	for my $key (sort keys %allowed) {
		if (!grep { $_ eq $options->{$key} } @{ $allowed{$key} }) {
			return $refuse->($key, 'one of ' . join(', ', @{ $allowed{$key} }));
		}
	}
	my $fine = $options->{MRAY_SIZE} =~ /^\s*(\d{1,5})\s*[,x]\s*(\d{1,5})\s*$/;
	my ($width, $height) = $fine ? ($1, $2) : (0, 0);
	if ($width < 1 || $height < 1 || $width > 8192 || $height > 8192 || $width * $height > 8192 * 4320) {
		return $refuse->('MRAY_SIZE',
			'width and height in pixels, as in 320,240, at most 8192 a side and 35 million in all');
	}
	$options->{MRAY_SIZE} = ($width + 0) . ',' . ($height + 0);
	my $exposure = $options->{MRAY_EXPOSURE};
	if (!is_number($exposure) || $exposure <= 0 || $exposure > 1000) {
		return $refuse->('MRAY_EXPOSURE', 'a number above 0 and up to 1000 (1 is normal)');
	}
	for my $key (@tint) {
		if (!is_number($options->{$key}) || $options->{$key} > 1000) {
			return $refuse->($key, 'a number from 0 to 1000 (1 changes nothing)');
		}
	}
	if ($options->{MRAY_REFERENCE} !~ m{^(?:/|$)}) {
		return $refuse->('MRAY_REFERENCE', 'the full path of a picture, from / on, or empty');
	}
	return '';
}

sub is_number {
	my ($text) = @_;
	return $text =~ /^(?:\d{1,9}(?:\.\d*)?|\.\d+)$/;
}

1;
